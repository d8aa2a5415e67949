#include "platform/pdf/PDFDataConsumer.h"

#include "platform/error/Error.h"

namespace vellmora {

std::unique_ptr<FileConsumer> FileConsumer::create(const QString& path) {
    try {
        return std::make_unique<FileConsumer>(path);
    } catch (const Error&) {
        return nullptr;
    }
}

}  // namespace vellmora
