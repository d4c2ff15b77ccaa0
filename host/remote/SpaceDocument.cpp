#include "host/remote/SpaceDocument.h"

#include <nlohmann/json.hpp>

#include "host/remote/Utf8Check.h"
#include "toolkit/services/Log.h"

namespace {

using Json = nlohmann::json;

constexpr std::size_t mostLoggedBytes = 80;
constexpr char const* askItsKeeper = "ask who keeps the project space";
/// Characters that are none, or direct what shows the text, have no place in a name.
constexpr std::string_view notUtf8MarkBytes = "\xEF\xBF\xBF";

bool hasControlCharacter(std::string_view text) {
    std::wstring const wide = fromUTF8(text.data(), static_cast<int>(text.size())).str();
    return std::any_of(wide.begin(), wide.end(),
                       [](wchar_t c) { return isControlCharacter(static_cast<char32_t>(c)); });
}

bool isNotUtf8(std::string_view text) {
    return text.find(notUtf8MarkBytes) != std::string_view::npos;
}

/// True if a component of the path is empty or leads upward or nowhere.
bool hasStrayComponent(std::string_view path) {
    for (std::size_t start = 0; start <= path.size();) {
        std::size_t const end = std::min(path.find('/', start), path.size());
        std::string_view const component = path.substr(start, end - start);
        if (component.empty() || component == "." || component == "..") {
            return true;
        }
        start = end + 1;
    }
    return false;
}

/// The text of a member, empty if there is none or it is no text.
std::string textOf(Json const& object, char const* key) {
    auto const found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

std::string textFault(std::string_view text) {
    if (text.size() > SpaceReader::mostNameBytes) {
        return "it has more than " + std::to_string(SpaceReader::mostNameBytes) + " bytes";
    }
    if (isNotUtf8(text)) {
        return "it is no UTF-8";
    }
    return hasControlCharacter(text) ? "it has control characters" : "";
}

LightweightString<wchar_t> wideOf(std::string const& text) {
    return fromUTF8(text.c_str(), static_cast<int>(text.size()));
}

}  // namespace

/// The entries of one document, while it is read.
class SpaceReader::Entries {
public:
    Entries(std::string const& shown, std::string_view text) : shown_(shown) {
        if (text.size() > mostDocumentBytes) {
            refuse("it has more than " + std::to_string(mostDocumentBytes) + " bytes");
            return;
        }
        root_ = Json::parse(markedUtf8(text), nullptr, false);
        if (!root_.is_object()) {
            refuse("it is no JSON object");
            return;
        }
        auto const found = root_.find("version");
        if (found == root_.end() || *found != version) {
            refuse("it isn't of version " + std::to_string(version));
        }
    }

    [[nodiscard]] bool areUsable() const { return isUsable_; }

    void requireClip(std::string_view clip) {
        if (isUsable_ && textOf(root_, "clip") != clip) {
            refuse("it is of another clip");
        }
    }

    /// The array of that name; an empty one if it is missing. It isn't copied: a copy would go as deep as the
    /// document is nested.
    [[nodiscard]] Json const& list(char const* key, std::size_t mostEntries) {
        static Json const none = Json::array();
        auto const found = isUsable_ ? root_.find(key) : root_.end();
        if (!isUsable_ || found == root_.end()) {
            return none;
        }
        Json const& list = *found;
        if (!list.is_array()) {
            refuse(std::string("\"") + key + "\" is no list");
        } else if (list.size() > mostEntries) {
            refuse(std::string("\"") + key + "\" has " + std::to_string(list.size()) +
                   " entries, more than " + std::to_string(mostEntries));
        }
        return isUsable_ ? list : none;
    }

    void leaveOut(std::string const& name, std::string const& reason) const {
        LogBoth("An entry \"%s\" of \"%s\" is left out: %s; %s\n", forLog(name, mostLoggedBytes).c_str(),
                shown_.c_str(), reason.c_str(), askItsKeeper);
    }

private:
    void refuse(std::string const& reason) {
        isUsable_ = false;
        LogBoth("\"%s\" can't be used: %s; %s\n", shown_.c_str(), reason.c_str(), askItsKeeper);
    }

    std::string const& shown_;
    Json root_;
    bool isUsable_ = true;
};

namespace {

/// Gives back why the entry is refused, empty if it was added.
std::string addFile(Json const& entry, std::vector<ListedFile>& files, std::string& name) {
    if (!entry.is_object()) {
        return "it is no object";
    }
    name = textOf(entry, "name");
    std::string const fault = SpaceReader::faultOf(name);
    if (!fault.empty()) {
        return fault;
    }
    auto const size = entry.find("size");
    if (size == entry.end() || !size->is_number_unsigned()) {
        return "its size is no number of bytes";
    }
    files.push_back({name, size->get<std::uint64_t>()});
    return {};
}

std::string addRoot(Json const& entry, std::vector<RemoteRoot>& roots, std::string& name) {
    if (!entry.is_object()) {
        return "it is no object";
    }
    std::string const path = textOf(entry, "path");
    std::string const otherPath = textOf(entry, "otherPath");
    name = path.empty() ? otherPath : path;
    if (name.empty()) {
        return "it has no path";
    }
    std::string const localPath = entry.contains("localPath") ? textOf(entry, "localPath") : name;
    if (localPath.empty()) {
        return "its local path is empty";
    }
    for (std::string const& text : {path, localPath, otherPath}) {
        std::string const fault = textFault(text);
        if (!fault.empty()) {
            return fault;
        }
    }
    roots.push_back({wideOf(path), wideOf(localPath), wideOf(otherPath)});
    return {};
}

}  // namespace

std::string SpaceReader::faultOf(std::string_view name) {
    if (name.empty()) {
        return "it has no name";
    }
    std::string const fault = textFault(name);
    if (!fault.empty()) {
        return fault;
    }
    if (name.find('\\') != std::string_view::npos) {
        return "it has a backslash";
    }
    if (name.starts_with("//") || name.find("://") != std::string_view::npos) {
        return "it names another host";
    }
    if (name.starts_with('/')) {
        return "it is absolute";
    }
    return hasStrayComponent(name) ? "it has a component that is empty, . or .." : "";
}

SpaceDocument SpaceReader::readClip(std::string_view text, std::string_view clip) const {
    Entries entries(shown_, text);
    entries.requireClip(clip);
    SpaceDocument document;
    auto const addAll = [&](char const* key, std::vector<ListedFile>& files) {
        for (Json const& entry : entries.list(key, mostFiles)) {
            std::string name;
            std::string const fault = addFile(entry, files, name);
            if (!fault.empty()) {
                entries.leaveOut(name, fault);
            }
        }
    };
    addAll("originals", document.originals);
    addAll("proxies", document.proxies);
    return entries.areUsable() ? document : SpaceDocument();
}

SpaceDocument SpaceReader::readSpace(std::string_view text) const {
    Entries entries(shown_, text);
    SpaceDocument document;
    for (Json const& entry : entries.list("roots", mostRoots)) {
        std::string name;
        std::string const fault = addRoot(entry, document.roots, name);
        if (!fault.empty()) {
            entries.leaveOut(name, fault);
        }
    }
    return document;
}
