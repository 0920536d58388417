// The window: lettrino [FILE].

#include "foundation/MDebug.h"
#include "foundation/MFolders.h"
#include "foundation/Product.h"
#include "platform/qt/QtText.h"
#include "shell/Program.h"

#include <QApplication>
#include <QIcon>
#include <cstdio>
#include <string_view>

namespace {

void Print(const QString& text) {
    std::fputs(text.toLocal8Bit().constData(), stdout);
}

// Help and version are told on the terminal, also where there is no screen to open a window on.
bool AnswerOnTerminal(int argc, char** argv) {
    const std::string_view first = argc > 1 ? argv[1] : "";
    if (first == "--version") {
        Print(ToQt(ProductName) + ' ' + ToQt(ProductVersion) + '\n');
        return true;
    }
    if (first == "--help" || first == "-h") {
        Print("Usage: lettrino [FILE]\n\n"
              "Makes and edits colour fonts. FILE is a texture font (.sm) to open.\n\n"
              "  -h, --help   this text\n"
              "  --version    the program's version\n\n"
              "The same work without a window: lettrino-cli --help\n");
        return true;
    }
    return false;
}

QIcon ProgramIcon() {
    QIcon icon;
    for (const int size : {16, 32, 48, 128, 256})
        icon.addFile(QApplication::applicationDirPath() +
                     QStringLiteral("/Media/icons/lettrino-%1.png").arg(size));
    return icon;
}

} // namespace

int main(int argc, char** argv) {
    if (AnswerOnTerminal(argc, argv)) return 0;
    DebugToStandardError();
    QApplication application(argc, argv);
    QApplication::setApplicationName(ToQt(ProductName));
    QApplication::setDesktopFileName(QStringLiteral("lettrino"));
    QApplication::setWindowIcon(ProgramIcon());
    const QStringList arguments = QApplication::arguments();
    // A font's picture is also sought above the folder of its file, which a path as typed need not tell.
    return RunProgram(arguments.size() > 1 ? FullPath(FromQt(arguments[1])) : MString());
}
