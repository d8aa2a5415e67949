#include "engine/appearance/FieldText.h"

#include "engine/appearance/FormField.h"

#include <algorithm>

namespace vellmora {

namespace {

/// Without what leaves no mark of its own, each letter in its plain form.
QString visibleLetters(const QString& text) {
    QString letters;
    for (const QChar character : text.normalized(QString::NormalizationForm_KC)) {
        const auto category = character.category();
        if (!character.isSpace() && category != QChar::Other_Control && category != QChar::Other_Format)
            letters += character;
    }
    return letters;
}

bool runsFromRightToLeft(const QString& text) {
    return std::any_of(text.begin(), text.end(), [](QChar character) {
        return character.direction() == QChar::DirR || character.direction() == QChar::DirAL;
    });
}

QString sorted(QString text) {
    std::sort(text.begin(), text.end());
    return text;
}

/// Without zeros at both ends, of which a format may add some.
QString significantDigits(const QString& text) {
    QString digits;
    for (const QChar character : text) {
        if (character.isDigit() && (!digits.isEmpty() || character != QLatin1Char('0')))
            digits += character;
    }
    while (digits.endsWith(QLatin1Char('0')))
        digits.chop(1);
    return digits;
}

bool hasFormatScript(const FormField& field) {
    QPDFObjectHandle actions = field.attribute("/AA");
    return actions.isDictionary() && actions.hasKey("/F");
}

bool agree(const QString& shown, const QString& wanted, const FormField& field) {
    const bool isList = field.is("/Ch") && !field.hasFlag(comboFlag);
    if (runsFromRightToLeft(wanted))  // files have such letters in the order of the text or that of the eye
        return isList || sorted(shown) == sorted(wanted);
    if (isList)
        return !shown.isEmpty() && shown.contains(wanted);
    if (hasFormatScript(field) && !shown.isEmpty() && !significantDigits(wanted).isEmpty())
        return significantDigits(shown) == significantDigits(wanted);
    return shown == wanted;
}

}  // namespace

QString displayedText(const FormField& field, AppearanceTools& tools) {
    QString text = field.text("/V");
    if (field.is("/Ch"))
        text = tools.options.of(field)->shownFor(text);
    if (field.is("/Tx") && field.hasFlag(passwordFlag))
        text.fill(QLatin1Char('*'));
    return text;
}

bool showsAnotherText(const FormField& field, const QPDFObjectHandle& appearance, AppearanceTools& tools) {
    const auto shown = tools.shownText.of(appearance, field.resources());
    return shown && !agree(visibleLetters(*shown), visibleLetters(displayedText(field, tools)), field);
}

}  // namespace vellmora
