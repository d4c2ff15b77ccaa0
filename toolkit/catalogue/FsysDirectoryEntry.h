#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "ole/Ox/OxObject.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/catalogue/MediaFileInfo.h"
#include "toolkit/catalogue/OpenType.h"

/// The media that a catalogue keeps for one cookie.
struct CookieMedia {
    [[nodiscard]] bool isEmpty() const { return !original && proxies.empty(); }
    /// A proxy comes behind those that are there, an original in place of the one before.
    void add(MediaFileInfo const& file);
    /// Takes the originals, the proxies or both away; gives back what there was of them.
    std::vector<MediaFileInfo> take(eMediaTypes types);
    /// What a level means, an `eProxyLevel`: the original or the first proxy; null if that isn't there.
    [[nodiscard]] MediaFileInfo const* ofLevel(std::uint32_t level) const;

    std::optional<MediaFileInfo> original;
    /// In the order in which they came.
    std::vector<MediaFileInfo> proxies;
};

/// Where a catalogue keeps its media, for the entries that it gives out. It may outlive the catalogue.
///
/// Threads  Any.
class iMediaKeeper : public virtual iObject {
public:
    /// Changes what is kept of a cookie, and answers whether there was anything to change. It may be run more than
    /// once, on what is kept each time, and with locks held: it calls nobody.
    using Change = std::function<bool(CookieMedia&)>;

    /// Makes a change: on what is kept at this moment, whoever kept it, and all of it or nothing.
    ///
    /// @param now  set to what is kept afterwards
    /// @return     false, `now` untouched, if it couldn't be kept, which is logged
    [[nodiscard]] virtual bool change(Cookie const& cookie, Change const& change, CookieMedia& now) = 0;
};

/// What the catalogue has for one cookie: its original, which the entry itself describes, and its proxies.
///
/// What is changed through an entry's operations is in the catalogue when they return. Such a change is made to
/// what the catalogue has by then, so that two who change different things of a cookie lose nothing.
///
/// Threads     An entry belongs to who asked for it; entries of one cookie may be used at once.
/// Deliberate  An entry shows the catalogue as it was when it was asked for, or when it was last changed through
///             this entry; what others change meanwhile is seen at the next look-up. Members that are assigned
///             directly change this entry alone.
class FsysDirectoryEntry : public virtual iObject, public MediaFileInfo {
public:
    /// An entry of nobody's: its changes are its own.
    FsysDirectoryEntry(Cookie const& cookie, MediaFileInfo const& original,
                       std::vector<MediaFileInfo> const& proxies)
        : FsysDirectoryEntry(cookie, CookieMedia{original, proxies}, {}) {}
    /// An entry whose changes `keeper` keeps.
    FsysDirectoryEntry(Cookie const& cookie, CookieMedia const& media, Ox::Ptr<iMediaKeeper> const& keeper);

    [[nodiscard]] Cookie const& getCookie() const { return cookie_; }
    [[nodiscard]] std::vector<MediaFileInfo> const& getProxyFiles() const { return proxies_; }

    /// True if the original's place holds a link to where the file really is.
    [[nodiscard]] bool isLinked() const { return kind == kindElsewhere && !physicalFilename.empty(); }
    /// Where the original's link points to; empty if it isn't linked.
    [[nodiscard]] LightweightString<wchar_t> getLinkedFilename() const {
        return isLinked() ? physicalFilename : LightweightString<wchar_t>();
    }
    /// Says where the original's media are: elsewhere, or at the material's place, if the name is empty or that very
    /// place. The disk isn't touched, see `realiseLinks`. Without an original nothing happens.
    void setLinkedFilename(LightweightString<wchar_t> const& name);
    /// Asks the file manager for the size of the original's physical file; 0 if it isn't there.
    void updateFileSize();
    /// Writes the link file of the original as the entry shows it.
    ///
    /// @param replaceExisting  as `MaterialLink::createLink` takes it
    /// @return false if there is no link, no place for it, or it can't be written
    bool realiseLinks(bool replaceExisting);

    /// Files a media file: a proxy beside those that are there, an original in place of the one before. A file at
    /// whose place a link file lies is filed as linked.
    void addFile(MediaFileInfo const& file);
    /// Forgets a media file: the proxy, or the original, of these names. Nothing is deleted.
    void removeFile(MediaFileInfo const& file);
    /// Files the proxy whose place is `from` as a file that lies at `to`, with its size and status as they are there.
    /// The names may be one and the same: a proxy that was elsewhere has come to its place. Nothing is renamed.
    void renameProxyFile(LightweightString<wchar_t> const& from, LightweightString<wchar_t> const& to);

    /// Looks now whether the files are there, and keeps that as the `status` of each that was asked for. May take
    /// as long as the file system or the network does.
    ///
    /// @param types  originals, proxies or both
    /// @return `available` if one of them is, else `missing`
    virtual std::uint32_t updateStatus(eMediaTypes types);

private:
    [[nodiscard]] CookieMedia media() const;
    void show(CookieMedia const& media);
    void change(iMediaKeeper::Change const& change);

    Cookie const cookie_;
    Ox::Ptr<iMediaKeeper> const keeper_;
    std::vector<MediaFileInfo> proxies_;
    bool hasOriginal_ = false;
};
