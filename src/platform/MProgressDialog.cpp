#include "platform/MProgressDialog.h"

#include "foundation/MNumbers.h"

MProgressDialog ProgressDialog;

void MProgressDialog::Configure(Desktop::WindowHandle newOwner) {
    if (!open) owner = newOwner;
}

void MProgressDialog::Open() {
    if (open) return;
    open = Desktop::OpenProgress(owner);
    lastPercent = -1;
    lastText = "XXX"; // no real text, so that the first update, the empty one included, is shown
    Update(0.0F, MString());
}

void MProgressDialog::Update(float fraction, const MString& text) {
    if (!open) return;
    std::int32_t percent = ToInteger(fraction * 100.0F);
    Clamp(percent, 0, 100);
    if (percent != lastPercent) {
        lastPercent = percent;
        Desktop::SetProgressPercent(percent);
    }
    if (!text.Equals(lastText)) {
        lastText = text;
        Desktop::SetProgressText(text);
    }
}

void MProgressDialog::Close() {
    if (open) Desktop::CloseProgress();
    open = false;
}
