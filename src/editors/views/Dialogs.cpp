// Which view shows which dialog.

#include "document/MColourFont.h"
#include "editors/views/MAboutView.h"
#include "editors/views/MAddGlyphsView.h"
#include "editors/views/MAddPictureView.h"
#include "editors/views/MAddSheetView.h"
#include "editors/views/MExportGameFontView.h"
#include "editors/views/MGlyphEditorView.h"
#include "editors/views/MGlyphHeightView.h"
#include "editors/views/MKerningEditorView.h"
#include "editors/views/MLetterCubeNamesView.h"
#include "editors/views/MLicenseKeysView.h"
#include "editors/views/MOpticalKerningView.h"
#include "platform/Desktop.h"
#include "platform/qt/MCursors.h"

namespace {

template<typename View, typename... Subject>
bool Run(Desktop::WindowHandle owner, const Subject&... subject) {
    const MOwnCursors cursors;
    View view(owner ? WidgetOf(owner)->window() : nullptr, subject...);
    return view.exec() == QDialog::Accepted;
}

} // namespace

bool Desktop::RunDialog(WindowHandle owner, DialogId id) {
    switch (id) {
    case DialogId::GlyphHeight: return Run<MGlyphHeightView>(owner);
    case DialogId::LicenseKeys: return Run<MLicenseKeysView>(owner);
    case DialogId::LetterCubesNames: return Run<MLetterCubeNamesView>(owner);
    case DialogId::KerningEditor: return CurrentFont && Run<MKerningEditorView>(owner);
    case DialogId::OpticalKerning: return CurrentFont && Run<MOpticalKerningView>(owner);
    case DialogId::GlyphEditor: return CurrentFont && Run<MGlyphEditorView>(owner);
    case DialogId::About: return Run<MAboutView>(owner);
    case DialogId::AddGlyphs: return Run<MAddGlyphsView>(owner);
    case DialogId::AddPicture: return Run<MAddPictureView>(owner);
    case DialogId::AddSheet: return CurrentFont && Run<MAddSheetView>(owner);
    case DialogId::ExportGameFont: return CurrentFont && Run<MExportGameFontView>(owner, *CurrentFont);
    }
    return false;
}
