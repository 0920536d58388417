// Letters by which the items of one menu are reached with Alt, underlined there.
#pragma once

#include <QSet>
#include <QString>

class MMnemonics {
public:
    // The text with '&' before a letter that no other item of the menu has yet: the first of a word, else any.
    QString Mark(const QString& text) {
        for (const bool wordsOnly : {true, false}) {
            for (int i = 0; i < text.size(); ++i) {
                const bool begins = i == 0 || !text[i - 1].isLetter();
                if (!text[i].isLetter() || (wordsOnly && !begins) || taken.contains(text[i].toLower())) continue;
                taken.insert(text[i].toLower());
                return QString(text).insert(i, '&');
            }
        }
        return text;
    }

private:
    QSet<QChar> taken;
};
