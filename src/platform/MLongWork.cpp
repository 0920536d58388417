#include "platform/MLongWork.h"

#include "platform/MProgressDialog.h"

MLongWork::MLongWork(Desktop::WindowHandle owner, const MString& what, std::uint64_t pixels) : text(what) {
    constexpr std::uint64_t noticed = std::uint64_t{1} << 25;
    if (pixels < noticed || ProgressDialog.open) return;
    ProgressDialog.Configure(owner);
    ProgressDialog.Open();
    shown = true;
    At(0, 1);
}

MLongWork::~MLongWork() {
    if (shown) ProgressDialog.Close();
}

void MLongWork::At(std::size_t done, std::size_t of) {
    if (shown) ProgressDialog.Update(static_cast<float>(done) / static_cast<float>(of), text);
}
