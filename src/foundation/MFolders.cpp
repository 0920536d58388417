#include "foundation/MFolders.h"

#include "foundation/MDebug.h"
#include "foundation/MString.h"

#include <gio/gio.h>

#include <algorithm>
#include <climits>
#include <limits>
#include <system_error>

namespace fs = std::filesystem;

namespace {

bool EqualNoCase(const MString& a, const MString& b) {
    return std::ranges::equal(a.View(), b.View(), {}, ToLowerUnit, ToLowerUnit);
}

// The entry of `folder` whose name is `name` but for case, if there is one. Names that are not valid UTF-8 are
// found here too, since they compare by their decoded text.
std::optional<fs::path> FindEntry(const fs::path& folder, const MString& name) {
    std::error_code error;
    for (fs::directory_iterator entry(folder.empty() ? fs::path(".") : folder, error), end;
         !error && entry != end; entry.increment(error)) {
        const fs::path file = entry->path().filename();
        if (EqualNoCase(FromSystemPath(file), name)) return folder / file;
    }
    return std::nullopt;
}

// `path` with the system's separators and without one trailing separator.
MString FolderForm(MString path) {
    path.ReplaceChar(u'/', PathSeparator);
    path.ReplaceChar(u'\\', PathSeparator);
    if (path.EndsWith(PathSeparator)) path.Truncate(path.length - 1);
    return path;
}

// How many units at the start name a root, which is never created: "/", "C:", "C:/".
std::int32_t RootLength(const MString& path) {
    std::int32_t length = path.length >= 2 && path.chars[1] == u':' ? 2 : 0;
    while (length < path.length && path.chars[length] == PathSeparator)
        ++length;
    return length;
}

MString CreatedOrEmpty(const MString& folder) {
    return CreateFolder(folder) ? folder : MString();
}

bool MoveToRecycleBin(const fs::path& path) {
    GFile* const file = g_file_new_for_path(path.c_str());
    const bool moved = g_file_trash(file, nullptr, nullptr);
    g_object_unref(file);
    return moved;
}

} // namespace

fs::path ToSystemPath(const MString& path) {
    MString own = path;
    own.ReplaceChar(u'\\', PathSeparator);
    own.ReplaceChar(u'/', PathSeparator);
    return fs::path(ToSystem(own));
}

MString FromSystemPath(const fs::path& path) {
    return FromSystem(path.string());
}

MString FullPath(const MString& path) {
    fs::path full;
    for (const fs::path& part : ToSystemPath(path)) {
        if (part != ".") full /= part;
    }
    if (path.IsEmpty() || full.is_absolute()) return FromSystemPath(full);
    std::error_code error;
    const fs::path current = fs::current_path(error);
    return FromSystemPath(current / full);
}

MString JoinPath(const MString& folder, const MString& name) {
    MString path = folder;
    path += PathSeparator;
    path += name;
    return path;
}

MString FolderOf(const MString& path) {
    const std::size_t separator = path.View().find_last_of(u"/\\");
    return separator == std::u16string_view::npos ? path : MString(path.View().substr(0, separator));
}

MString FileNameOf(const MString& path) {
    const std::size_t separator = path.View().find_last_of(u"/\\");
    return separator == std::u16string_view::npos ? path : MString(path.View().substr(separator + 1));
}

MString ExtensionOf(const MString& path) {
    const MString name = FileNameOf(path);
    const std::size_t dot = name.View().rfind(u'.');
    if (dot == std::u16string_view::npos) return {};
    MString extension(name.View().substr(dot + 1));
    extension.ToUpper();
    return extension;
}

MString WithExtension(const MString& path, const MString& extension) {
    const std::size_t stop = path.View().find_last_of(u"./\\");
    const bool has = stop != std::u16string_view::npos && path.View()[stop] == u'.';
    return (has ? MString(path.View().substr(0, stop)) : path) + "." + extension;
}

std::optional<fs::path> FindExisting(const MString& path) {
    if (path.IsEmpty()) return std::nullopt;
    const fs::path asGiven = ToSystemPath(path);
    std::error_code error;
    if (fs::exists(asGiven, error)) return asGiven;

    fs::path found;
    for (const fs::path& part : asGiven) {
        const fs::path exact = found / part;
        if (part.empty() || exact == exact.root_path() || fs::exists(exact, error)) {
            found = exact;
            continue;
        }
        const auto entry = FindEntry(found, FromSystemPath(part));
        if (!entry) return std::nullopt;
        found = *entry;
    }
    return found;
}

fs::path PlaceToWrite(const MString& path) {
    if (const auto existing = FindExisting(path)) return *existing;
    const fs::path given = ToSystemPath(path);
    if (!given.has_parent_path() || given.parent_path() == given) return given;
    const auto folder = FindExisting(FromSystemPath(given.parent_path()));
    return folder ? *folder / given.filename() : given;
}

bool FileExists(const MString& path) {
    const auto existing = FindExisting(path);
    std::error_code error;
    return existing && !fs::is_directory(*existing, error);
}

bool FolderExists(const MString& path) {
    MString folder = FolderForm(path);
    if (folder.IsEmpty() && !path.IsEmpty()) folder = path; // the root itself
    const auto existing = FindExisting(folder);
    std::error_code error;
    return existing && fs::is_directory(*existing, error);
}

bool IsReadOnly(const MString& path) {
    constexpr fs::perms writers = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    std::error_code error;
    const fs::file_status status = fs::status(PlaceToWrite(path), error);
    return fs::exists(status) && (status.permissions() & writers) == fs::perms::none;
}

bool CreateFolder(const MString& path) {
    const MString folder = FolderForm(path);
    if (folder.IsEmpty()) return !path.IsEmpty();
    const std::int32_t root = RootLength(folder);
    if (root == folder.length || FolderExists(folder)) return true;
    for (std::int32_t i = root; i < folder.length; ++i) {
        const bool last = i == folder.length - 1;
        if (folder.chars[i] != PathSeparator && !last) continue;
        const MString part(folder.View().substr(0, static_cast<std::size_t>(last ? i + 1 : i)));
        if (FolderExists(part)) continue;
        std::error_code error;
        if (!fs::create_directory(PlaceToWrite(part), error)) return false;
        DebugOutput((MString("New folder created: \"") + part + "\"\n").View());
    }
    return true;
}

bool DeleteFile(const MString& path, bool clearReadOnly, bool toRecycleBin) {
    if (path.IsEmpty()) return true;
    const fs::path file = PlaceToWrite(path);
    std::error_code error;
    if (fs::is_directory(file, error)) return false;
    if (clearReadOnly && IsReadOnly(path))
        fs::permissions(file, fs::perms::owner_write, fs::perm_options::add, error);
    if (toRecycleBin) return MoveToRecycleBin(file);
    return !IsReadOnly(path) && fs::remove(file, error);
}

MString SizeText(std::int64_t bytes) {
    const auto text = [](std::int64_t number, const char* unit) {
        return MString(static_cast<std::int32_t>(number)) + unit;
    };
    if (bytes >= std::int64_t{1} << 30) return text(bytes >> 30, " GB");
    if (bytes >= std::int64_t{1} << 20) return text(bytes >> 20, " MB");
    if (bytes / 1024 < 1) return text(bytes, " bytes");
    return text(bytes / 1024, " KB");
}

MString GetProgramFolder() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return error ? MString() : FolderOf(FromSystemPath(program));
}

MString GetAppDataFolder(const MString& first, const MString& second) {
    return CreatedOrEmpty(JoinPath(JoinPath(FromSystem(g_get_user_config_dir()), first), second));
}

MString GetDocumentsFolder(const MString& name) {
    const char* documents = g_get_user_special_dir(G_USER_DIRECTORY_DOCUMENTS);
    const MString base =
        documents ? FromSystem(documents) : JoinPath(FromSystem(g_get_home_dir()), "Documents");
    return CreatedOrEmpty(JoinPath(base, name));
}
