// The one modeless window of the program: a bar and a line of text during a long operation. It tells the
// desktop only of what changed, since each change repaints at once.
#pragma once

#include "platform/Desktop.h"

class MProgressDialog {
public:
    Desktop::WindowHandle owner = nullptr;
    bool open = false;
    std::int32_t lastPercent = -1;
    MString lastText;

    void Configure(Desktop::WindowHandle newOwner); // ignored while the window is open
    void Open();
    void Update(float fraction, const MString& text); // 0 to 1, limited; nothing while closed
    void Close();                                     // safe when closed
};

extern MProgressDialog ProgressDialog;
