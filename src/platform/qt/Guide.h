// The guide that is installed with the program, which opens without a network.
#pragma once

#include <QString>
#include <QUrl>

// The installed page that tells what the maker's site would at this address; the address itself for any other,
// and where no guide is installed.
QUrl InstalledGuide(const QString& url);
