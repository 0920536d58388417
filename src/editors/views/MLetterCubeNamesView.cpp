#include "editors/views/MLetterCubeNamesView.h"

#include "document/MSettings.h"
#include "editors/LetterCubeNames.h"
#include "platform/qt/QtText.h"

MLetterCubeNamesView::MLetterCubeNamesView(QWidget* owner)
    : MDialogView(owner, "Export as letter cubes", 180, 165) {
    Place(names, 8, 20, 164, 118);
    AddLabel("&Names, one to a line", names, 8, 4, 164, 14);
    names.setTabChangesFocus(true);
    names.setPlainText(ToQt(Settings->LetterCubesNames));
    AddButtons(79, 145, 127, 145);
    names.setFocus();
    onOk = [this] {
        // The raw text, since the plain one makes blanks of no-break spaces. Shift and Enter end a line too.
        QString text = names.document()->toRawText();
        text.replace(QChar::ParagraphSeparator, '\n').replace(QChar::LineSeparator, '\n');
        StoreLetterCubeNames(FromQt(text));
    };
}
