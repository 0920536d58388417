#include "editors/views/MLicenseKeysView.h"

#include "licensing/MLicense.h"
#include "platform/qt/QtText.h"

MLicenseKeysView::MLicenseKeysView(QWidget* owner) : MDialogView(owner, "Enter license keys", 260, 85) {
    const std::array labels{"Key &1", "Key &2", "Key &3"};
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const int top = 8 + 18 * static_cast<int>(i);
        Place(keys[i], 45, top, 205, 14);
        AddLabel(labels[i], keys[i], 10, top, 33, 14);
        Fill(keys[i], Settings->Keys[i]);
    }
    AddButtons(160, 66, 208, 66);
    keys[0].setFocus();
    onOk = [this] {
        for (std::size_t i = 0; i < keys.size(); ++i)
            Settings->Keys[i] = FromQt(keys[i].text());
        if (License) License->Take(*Settings);
    };
}
