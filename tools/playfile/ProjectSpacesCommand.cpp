#include "tools/playfile/ProjectSpacesCommand.h"

#include <algorithm>

#include "host/remote/HttpUrl.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/DrivePlace.h"
#include "tools/playfile/JsonText.h"
#include "tools/playfile/OpenedProject.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/ProjectSpaceOpener.h"
#include "tools/playfile/Text.h"
#include "tools/playfile/TextTable.h"

namespace cli {
namespace {

using Name = LightweightString<wchar_t>;

/// PATH, PATH=LOCAL or PATH=LOCAL=OTHER.
RemoteRoot parseRoot(std::string const& text) {
    std::size_t const first = text.find('=');
    std::string const path = text.substr(0, first);
    std::string const rest = first == std::string::npos ? path : text.substr(first + 1);
    std::size_t const second = rest.find('=');
    std::string const local = rest.substr(0, second);
    std::string const other = second == std::string::npos ? std::string() : rest.substr(second + 1);
    if ((path.empty() && other.empty()) || local.empty()) {
        throw CommandError("--root takes PATH, PATH=LOCAL or PATH=LOCAL=OTHER, not " + inQuotes(text),
                           exitUsage);
    }
    return {wideName(path), wideName(local), wideName(other)};
}

/// A URL without what it holds of secrets.
std::string shown(Name const& name) {
    auto const url = HttpUrl::parse(name);
    return url ? url->shown : narrowName(name);
}

char const* nameOfType(int type) {
    switch (type) {
        case ProjectSpacesManager::localSpace:
            return "local";
        case ProjectSpacesManager::sharedSpace:
            return "shared";
        case ProjectSpacesManager::remoteSpace:
            return "remote";
        default:
            return "unknown";
    }
}

Json describe(ProjectSpaceRecord const& space) {
    Name const url = ProjectSpaceOpener::urlOf(space);
    Json json;
    json["name"] = narrowName(space.name);
    json["type"] = nameOfType(space.type);
    json["isCurrent"] = space.isCurrent;
    json["url"] = url.empty() ? Json() : Json(shown(url));
    json["roots"] = Json::array();
    for (RemoteRoot const& root : space.roots) {
        if (url.empty() || root.path != url) {
            json["roots"].push_back({{"path", narrowName(root.path)},
                                     {"localPath", narrowName(root.localPath)},
                                     {"otherPath", narrowName(root.otherPath)}});
        }
    }
    return json;
}

void writeTable(Json const& spaces) {
    TextTable table({"SPACE", "TYPE", "IN USE", "URL", "ROOTS"});
    for (Json const& space : spaces) {
        std::string roots;
        for (Json const& root : space["roots"]) {
            roots += (roots.empty() ? "" : ", ") + root["path"].get<std::string>();
        }
        table.add({space["name"].get<std::string>(), space["type"].get<std::string>(),
                   space["isCurrent"].get<bool>() ? "yes" : "",
                   space["url"].is_null() ? "" : space["url"].get<std::string>(), roots});
    }
    writeLine(table.text());
}

void requireSpace(OpenedProject& opened, std::string const& name) {
    auto const spaces = opened.project().spaces().getAll();
    Name const wanted = wideName(name);
    if (std::none_of(spaces.begin(), spaces.end(),
                     [&](ProjectSpaceRecord const& space) { return space.name == wanted; })) {
        throw CommandError("the project " + inQuotes(opened.path()) + " has no space " + inQuotes(name) +
                           "; 'playfile project spaces' lists them");
    }
}

}  // namespace

void ProjectSpacesCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand("spaces", "Lists the project spaces of a project, and changes them");
    command_->add_option("FILE", file_, "The project's file")->required();
    CLI::Option* const add =
        command_->add_option("--add", add_, "Add a remote space, or put another in its place: NAME=URL");
    command_
        ->add_option("--root", roots_,
                     "Where its files lie, as the space names it, as it is given here, and how else it is "
                     "named: PATH=LOCAL=OTHER; may come more than once, else the server is asked")
        ->needs(add);
    use_ = command_->add_option("--use", inUse_, "Work in a space from now on; '' for none of them");
    command_->add_option("--remove", remove_, "Forget a space");
    command_->add_flag("--json", isJson_, "Write JSON");
    command_->footer(
        "A password in a URL is kept in the project's file as it is, and never shown.\n"
        "Examples:\n  playfile project spaces film.project --add Berlin=https://media.example/projects/7\n"
        "  playfile project spaces film.project --use Berlin");
}

int ProjectSpacesCommand::run(SessionOptions const& options) {
    std::optional<ProjectSpaceRecord> const added = parseAdded();
    OpenedProject opened(options, file_);
    remove(opened);
    if (added && !opened.project().spaces().set(*added)) {
        opened.refuseChange();
    }
    if (use_->count() != 0) {
        if (!inUse_.empty()) {
            requireSpace(opened, inUse_);
        }
        if (!opened.project().spaces().setCurrent(wideName(inUse_))) {
            opened.refuseChange();
        }
    }
    list(opened);
    return exitSuccess;
}

std::optional<ProjectSpaceRecord> ProjectSpacesCommand::parseAdded() const {
    if (add_.empty()) {
        return std::nullopt;
    }
    auto const [name, address] = splitAtSign(add_, "NAME=URL");
    auto const url = HttpUrl::parse(wideName(address));
    if (!url || url->hasQuery) {
        throw CommandError("the space " + inQuotes(name) +
                               " needs a URL of http or https without a query; check what follows the '='",
                           exitUsage);
    }
    ProjectSpaceRecord space;
    space.name = wideName(name);
    space.type = ProjectSpacesManager::remoteSpace;
    space.roots.push_back(ProjectSpaceOpener::rootOf(wideName(address)));
    for (std::string const& root : roots_) {
        space.roots.push_back(parseRoot(root));
    }
    return space;
}

void ProjectSpacesCommand::remove(OpenedProject& opened) const {
    for (std::string const& name : remove_) {
        requireSpace(opened, name);
        if (!opened.project().spaces().remove(wideName(name))) {
            opened.refuseChange();
        }
    }
}

void ProjectSpacesCommand::list(OpenedProject& opened) const {
    Json spaces = Json::array();
    for (ProjectSpaceRecord const& space : opened.project().spaces().getAll()) {
        spaces.push_back(describe(space));
    }
    if (isJson_) {
        writeLine(toJsonText(spaces));
    } else {
        writeTable(spaces);
    }
}

}  // namespace cli
