// The window for a picture with many letters on it, which works on the current document.
#pragma once

#include "editors/MAddSheet.h"
#include "editors/views/MDialogView.h"
#include "editors/views/MFocusArea.h"

#include <QCheckBox>
#include <QComboBox>
#include <QTimer>

class MAddSheetView : public MDialogView {
public:
    explicit MAddSheetView(QWidget* owner);

protected:
    void accept() override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    MAddSheet dialog;
    QLineEdit path;
    QPushButton browse{"&Browse"};
    QLineEdit text;
    QTimer typing; // runs out when no key has come for a while
    MFocusArea sheet{"Sheet"};
    QPushButton join{"&Join with next"};
    QPushButton cut{"&Split"};
    QPushButton leaveOut{"&Leave out"};
    QPushButton doubt{"&Next in doubt"};
    QPushButton undo{"&Undo"};
    QComboBox ground;
    QLineEdit cellWidth;
    QLineEdit cellHeight;
    QCheckBox keepCells{"&Keep widths"};
    QLineEdit spacingBefore;
    QLineEdit spacingAfter;
    QLabel box;
    QLabel notice;

    struct MNamedField {
        const char* name;
        QLineEdit* field;
    };

    void LayOut();
    void PlacePair(MNamedField first, MNamedField second, const char* ifEmpty, MPoint at);
    void Connect();
    void ConnectFields();
    void Open(const MString& file);
    void ChooseGround(int choice);
    bool Key(const QKeyEvent& event);
    bool CutKey(const QKeyEvent& event);
    bool MoveKey(const QKeyEvent& event);
    void Type(const QString& typed);
    void Act(const std::function<void(MSheetEditor&)>& change); // on the selected box, and goes on there
    void ShowControls();
};
