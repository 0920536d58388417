#include "platform/qt/Guide.h"

#include "foundation/MFolders.h"
#include "foundation/Product.h"
#include "platform/qt/QtText.h"

#include <QFileInfo>

QUrl InstalledGuide(const QString& url) {
    const struct {
        const char* address;
        const char* part;
    } pages[] = {
        {"/lettrinomanual", ""}, {"/lettrinomanual#buy", "ordering-information"}, {"/community/", "community"}};
    const QString guide = ToQt(JoinPath(GetProgramFolder(), "Guide/guide.html"));
    for (const auto& [address, part] : pages) {
        if (url != ToQt(MakerSite + address) || !QFileInfo::exists(guide)) continue;
        QUrl page = QUrl::fromLocalFile(guide);
        if (*part) page.setFragment(part);
        return page;
    }
    return QUrl(url);
}
