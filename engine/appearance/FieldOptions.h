#pragma once

#include "engine/appearance/FieldFonts.h"
#include "engine/appearance/FieldFrame.h"
#include "engine/appearance/FormField.h"
#include "engine/appearance/ObjectCache.h"

#include <string>
#include <vector>

#include <QHash>
#include <QSet>

namespace vellmora {

/// The options of a choice field.
class FieldOptions {
public:
    explicit FieldOptions(QPDFObjectHandle list);

    size_t count() const { return m_options.size(); }
    const QString& shown(size_t index) const { return m_options[index].shown; }
    bool isChosen(size_t index, const QSet<QString>& values) const;
    /// What is shown for a value; the value itself where it is none of the options.
    QString shownFor(const QString& value) const { return m_shownByValue.value(value, value); }

private:
    struct Option {
        QString exported;
        QString shown;
    };

    std::vector<Option> m_options;
    QHash<QString, QString> m_shownByValue;
};

/// The options of all fields; fields that share their options share what is read of them.
class OptionLists {
public:
    ObjectCache<FieldOptions>::Pointer of(const FormField& field);

private:
    ObjectCache<FieldOptions> m_lists;
};

/// The values of a choice field.
QSet<QString> chosenValues(const FormField& field);

/// The options of a list box from its first visible one on, those chosen on a coloured bar.
void drawListBox(FormBuilder& drawing, const FormField& field, const FieldFrame& frame,
                 const FieldOptions& options, FieldFonts& fonts, const std::string& fontName);

}  // namespace vellmora
