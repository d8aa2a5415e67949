#include "platform/pdf/annotations/FieldOptions.h"

namespace vellmora {

FieldOptions::FieldOptions(QPDFObjectHandle list) {
    if (!list.isArray())
        return;
    for (QPDFObjectHandle item : list.aitems()) {
        const bool isPair = item.isArray() && item.getArrayNItems() >= 2;
        const QString exported = textOf(isPair ? item.getArrayItem(0) : item);
        const QString shown = isPair ? textOf(item.getArrayItem(1)) : exported;
        m_options.push_back({exported, shown});
        if (!m_shownByValue.contains(exported))
            m_shownByValue.insert(exported, shown);
    }
}

bool FieldOptions::isChosen(size_t index, const QSet<QString>& values) const {
    return values.contains(m_options[index].exported) || values.contains(m_options[index].shown);
}

ObjectCache<FieldOptions>::Pointer OptionLists::of(const FormField& field) {
    QPDFObjectHandle list = field.attribute("/Opt");
    return m_lists.get(list, [&] { return FieldOptions(list); });
}

QSet<QString> chosenValues(const FormField& field) {
    QPDFObjectHandle value = field.attribute("/V");
    QSet<QString> chosen;
    if (value.isArray()) {
        for (const QPDFObjectHandle& item : value.aitems())
            chosen.insert(textOf(item));
    } else if (!value.isNull()) {
        chosen.insert(textOf(value));
    }
    return chosen;
}

}  // namespace vellmora
