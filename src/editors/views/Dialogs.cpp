// Which view shows which dialog.

#include "editors/views/MGlyphHeightView.h"
#include "editors/views/MLicenseKeysView.h"
#include "platform/Desktop.h"

namespace {

template<typename View>
bool Run(Desktop::WindowHandle owner) {
    View view(owner ? WidgetOf(owner)->window() : nullptr);
    return view.exec() == QDialog::Accepted;
}

} // namespace

bool Desktop::RunDialog(WindowHandle owner, DialogId id) {
    switch (id) {
    case DialogId::GlyphHeight: return Run<MGlyphHeightView>(owner);
    case DialogId::LicenseKeys: return Run<MLicenseKeysView>(owner);
    case DialogId::About:
    case DialogId::AddGlyphs:
    case DialogId::AddPicture:
    case DialogId::LetterCubesNames:
    case DialogId::KerningEditor:
    case DialogId::GlyphEditor: break;
    }
    return false;
}
