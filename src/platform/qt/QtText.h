// The program's text as Qt's, unit for unit, and back.
#pragma once

#include "foundation/MString.h"

#include <QString>

inline QString ToQt(const MString& text) {
    const auto units = text.View();
    return QString(reinterpret_cast<const QChar*>(units.data()), static_cast<qsizetype>(units.size()));
}

inline MString FromQt(const QString& text) {
    return MString(std::u16string_view(reinterpret_cast<const char16_t*>(text.utf16()),
                                       static_cast<std::size_t>(text.size())));
}
