#include "engine/fonts/StreamText.h"

namespace vellmora {

void readTokens(const std::string& content, const std::function<bool(const QPDFTokenizer::Token&)>& visit) {
    QPDFTokenizer tokenizer;
    tokenizer.allowEOF();
    QPDFTokenizer::Token token;
    for (size_t i = 0; i < content.size(); ++i) {
        tokenizer.presentCharacter(content[i]);
        bool isUnread = false;
        char unread = 0;
        if (!tokenizer.getToken(token, isUnread, unread))
            continue;
        if (isUnread)
            --i;
        if (!visit(token))
            return;
    }
    tokenizer.presentEOF();
    bool isUnread = false;
    char unread = 0;
    if (tokenizer.getToken(token, isUnread, unread))
        visit(token);
}

}  // namespace vellmora
