#include "tools/playfile/MediaGroups.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <unordered_map>

#include "toolkit/services/FilespecUtils.h"
#include "tools/playfile/MediaKind.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr std::array<std::string_view, 2> proxyEndings = {"_proxy", ".proxy"};
constexpr std::array<std::string_view, 2> proxyFolders = {"proxy", "proxies"};
constexpr std::string_view numberSeparators = "._- ";

std::string_view stemOf(std::string_view name) {
    return name.substr(0, name.rfind('.'));
}

/// What the original of a file of that stem is called, if it is called a proxy; empty if it isn't.
std::string_view originalStem(std::string_view stem) {
    for (std::string_view const ending : proxyEndings) {
        if (stem.size() > ending.size() && lowered(stem.substr(stem.size() - ending.size())) == ending) {
            return stem.substr(0, stem.size() - ending.size());
        }
    }
    return {};
}

/// The stem of a numbered name without its number and what separates it; empty if nothing is left.
std::string_view stemWithoutNumber(std::string_view stem) {
    constexpr std::string_view digits = "0123456789";
    std::size_t const last = stem.find_last_of(digits);
    if (last == std::string_view::npos) {
        return {};
    }
    std::size_t const before = stem.find_last_not_of(digits, last);
    std::string_view const text = before == std::string_view::npos ? "" : stem.substr(0, before + 1);
    std::size_t const end = text.find_last_not_of(numberSeparators);
    return end == std::string_view::npos ? std::string_view() : text.substr(0, end + 1);
}

bool mayBeInSeries(FoundFile const& file) {
    eMediaKind const kind = kindOfMedia(file.name);
    return kind == eMediaKind::still || kind == eMediaKind::cameraChunk;
}

std::string nextName(std::string const& name) {
    return narrowName(Ox::FilespecUtils::getSEQFileName(wideName(name), 1));
}

/// Puts the members of series together, and every other file alone.
class SeriesFinder {
public:
    explicit SeriesFinder(std::vector<FoundFile> const& files) : files_(files), isTaken_(files.size()) {
        for (std::size_t i = 0; i < files.size(); ++i) {
            if (mayBeInSeries(files[i])) {
                places_.emplace(files[i].name, i);
            }
        }
    }

    /// Series that have a beginning come first, so that none begins in the middle of another.
    std::vector<MediaGroup> find() {
        std::vector<std::size_t> next(files_.size(), noFile);
        std::vector<bool> isFollower(files_.size());
        for (auto const& [name, place] : places_) {
            auto const found = places_.find(nextName(name));
            if (found != places_.end() && found->second != place) {
                next[place] = found->second;
                isFollower[found->second] = true;
            }
        }
        std::vector<MediaGroup> groups;
        for (std::size_t i = 0; i < files_.size(); ++i) {
            if (!isFollower[i]) {
                groups.push_back(take(i, next));
            }
        }
        return groups;
    }

private:
    static constexpr std::size_t noFile = static_cast<std::size_t>(-1);

    MediaGroup take(std::size_t first, std::vector<std::size_t> const& next) {
        MediaGroup group;
        for (std::size_t i = first; i != noFile && !isTaken_[i]; i = next[i]) {
            isTaken_[i] = true;
            group.originals.push_back(files_[i]);
        }
        return group;
    }

    std::vector<FoundFile> const& files_;
    std::vector<bool> isTaken_;
    std::unordered_map<std::string, std::size_t> places_;
};

/// Finds the clip that a proxy belongs to.
class ProxyMatcher {
public:
    explicit ProxyMatcher(std::vector<MediaGroup>& groups) : groups_(groups) {
        for (std::size_t i = 0; i < groups.size(); ++i) {
            std::string_view const stem = stemOf(groups[i].originals.front().name);
            offer(stem, i);
            if (groups[i].originals.size() > 1) {
                offer(stemWithoutNumber(stem), i);
            }
        }
    }

    /// @param mayBearTheSameName  true in a folder of proxies
    bool match(FoundFile const& proxy, bool mayBearTheSameName) {
        std::string_view const stem = stemOf(proxy.name);
        std::string_view const original = originalStem(stem);
        auto found = original.empty() ? byStem_.end() : byStem_.find(std::string(original));
        if (found == byStem_.end() && mayBearTheSameName) {
            found = byStem_.find(std::string(stem));
        }
        if (found == byStem_.end()) {
            return false;
        }
        groups_[found->second].proxies.push_back(proxy);
        return true;
    }

private:
    static int rankOf(MediaGroup const& group) {
        switch (kindOfMedia(group.originals.front().name)) {
            case eMediaKind::video:
            case eMediaKind::cameraChunk:
                return 0;
            case eMediaKind::sound:
                return 1;
            default:
                return 2;
        }
    }
    void offer(std::string_view stem, std::size_t group) {
        if (stem.empty()) {
            return;
        }
        auto const [place, isNew] = byStem_.emplace(stem, group);
        if (!isNew && rankOf(groups_[group]) < rankOf(groups_[place->second])) {
            place->second = group;
        }
    }

    std::vector<MediaGroup>& groups_;
    std::map<std::string, std::size_t> byStem_;
};

}  // namespace

bool isCalledProxy(std::string const& name) {
    return !originalStem(stemOf(name)).empty();
}

bool isProxyFolder(std::string const& name) {
    return std::find(proxyFolders.begin(), proxyFolders.end(), lowered(name)) != proxyFolders.end();
}

std::vector<MediaGroup> groupMedia(std::vector<FoundFile> const& files,
                                   std::vector<FoundFile> const& proxies) {
    std::vector<FoundFile> originals;
    std::vector<FoundFile> calledProxies;
    std::partition_copy(files.begin(), files.end(), std::back_inserter(calledProxies),
                        std::back_inserter(originals),
                        [](FoundFile const& file) { return isCalledProxy(file.name); });
    std::vector<MediaGroup> groups = SeriesFinder(originals).find();
    std::vector<FoundFile> alone;
    ProxyMatcher matcher(groups);
    for (FoundFile const& file : calledProxies) {
        if (!matcher.match(file, false)) {
            alone.push_back(file);
        }
    }
    for (FoundFile const& file : proxies) {
        static_cast<void>(matcher.match(file, true));
    }
    for (FoundFile const& file : alone) {
        groups.push_back({{file}, {}});
    }
    return groups;
}

}  // namespace cli
