#include "editors/views/MAboutView.h"

#include "licensing/MLicense.h"
#include "platform/qt/QtText.h"

#include <QApplication>
#include <QScreen>
#include <algorithm>

namespace {

MAbout About(float scale) {
    return {License ? License->Name : MString(), scale};
}

} // namespace

MAboutView::MAboutView(QWidget* owner) : MDialogView(owner, "About", 356, 222) {
    const QSize room = Room();
    const Desktop::Rect full = About(1).Client();
    const double fit = std::min({1.0, static_cast<double>(room.width()) / full.Width(),
                                 static_cast<double>(room.height()) / full.Height()});
    const MAbout about = About(static_cast<float>(fit));
    SetSize({about.Client().Width(), about.Client().Height()});
    Place(ok, 0, 0, 45, 14);
    const Desktop::Rect place = about.OkButton(ok.width(), ok.height());
    ok.move(place.left, place.top);
    ok.setDefault(true);
    if (const QScreen* const primary = QApplication::primaryScreen())
        move(primary->geometry().center() - rect().center());
    // The texts are painted, for those who can see.
    setAccessibleDescription(ToQt(about.Heading + "\n" + about.Body));
    connect(&ok, &QPushButton::clicked, this, &QDialog::accept);
    client.draw = [this, fit] { About(static_cast<float>(fit * devicePixelRatioF())).Paint(Handle()); };
    onMouse = [this](const MMouse& mouse) {
        if (mouse.left && !mouse.moved) accept();
    };
}
