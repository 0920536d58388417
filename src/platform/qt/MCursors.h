// The pointer while the program works, and while it asks something in between.
#pragma once

#include <QCursor>
#include <QGuiApplication>
#include <vector>

// The pointer of a busy program.
class MBusyCursor {
public:
    MBusyCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    MBusyCursor(const MBusyCursor&) = delete;
    MBusyCursor& operator=(const MBusyCursor&) = delete;
    ~MBusyCursor() { QGuiApplication::restoreOverrideCursor(); }
};

// Every window's own pointer, also within busy work.
class MOwnCursors {
public:
    MOwnCursors() {
        while (const QCursor* const cursor = QGuiApplication::overrideCursor()) {
            before.push_back(*cursor);
            QGuiApplication::restoreOverrideCursor();
        }
    }
    MOwnCursors(const MOwnCursors&) = delete;
    MOwnCursors& operator=(const MOwnCursors&) = delete;
    ~MOwnCursors() {
        for (auto cursor = before.rbegin(); cursor != before.rend(); ++cursor)
            QGuiApplication::setOverrideCursor(*cursor);
    }

private:
    std::vector<QCursor> before; // the innermost first
};
