// Where a user who ordered the program enters the keys.
#pragma once

#include "editors/views/MDialogView.h"

#include <array>

class MLicenseKeysView : public MDialogView {
public:
    explicit MLicenseKeysView(QWidget* owner);

private:
    std::array<QLineEdit, 3> keys;
};
