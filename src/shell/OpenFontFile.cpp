#include "shell/OpenFontFile.h"

#include "document/MColourFont.h"
#include "foundation/MFolders.h"
#include "imaging/MFileTypes.h"
#include "shell/CurrentFont.h"

void OpenFontFile(const MString& path) {
    if (path.IsEmpty()) return;
    MColourFont& font = CurrentOrNewFont();
    font.Clear();
    const MString extension = ExtensionOf(path);
    bool opened = false;
    if (extension.Equals("SM")) opened = font.Load(path);
    if (extension.Equals("JS")) opened = font.ImportJavascript(path);
    if (opened) RepackAndDraw(font);
}

void OpenUrl(const MString& url) {
    if (url.IsEmpty()) return;
    const MString extension = url.GetExtension();
    if (extension.IsEmpty() || FileTypes.IsWebPage(extension)) Desktop::OpenInBrowser(url);
}
