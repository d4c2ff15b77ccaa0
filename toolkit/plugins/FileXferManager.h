#pragma once

#include <cstdint>
#include <vector>

#include "ole/os/Errors.h"

class FileXferSpec;
class LoggerHandle;

/// A kind of device or service that plug-ins offer.
enum OxResourceType : std::uint32_t { fileXferResource = 32 };

/// Something that a plug-in offers; what it can do is found out by a cast.
class OxResourceTypeBase {
public:
    virtual ~OxResourceTypeBase() = default;
};

/// What plug-ins offer, by type.
///
/// Threads  Any. What is offered isn't owned and must stay until it is withdrawn.
class OxDeviceDriverManager {
public:
    [[nodiscard]] static OxDeviceDriverManager& instance();

    /// In the order in which they were added.
    [[nodiscard]] std::vector<OxResourceTypeBase*> getResources(OxResourceType type) const;
    void add(OxResourceType type, OxResourceTypeBase* resource);
    void remove(OxResourceTypeBase* resource);
};

/// Copies sections of files.
///
/// Threads  Any, several at once for different copies. A copy asks by itself whether it is to end.
class iFileXferManager : public OxResourceTypeBase {
public:
    /// A cheap test whether it can make this copy.
    [[nodiscard]] virtual bool canTransfer(FileXferSpec* spec) = 0;
    /// Makes the copy, for as long as it takes.
    ///
    /// @return  1; 0 for a copy that failed; 3 if it was interrupted; any other code for another failure.
    ///          What is left on the disk then is its own affair.
    virtual OxResult transfer(FileXferSpec* spec, LoggerHandle& log) = 0;
};

/// Appends those resources of a type that are of this class.
template <class Resource>
void findPluginResources(std::vector<Resource*>& result, OxResourceType type) {
    for (OxResourceTypeBase* const resource : OxDeviceDriverManager::instance().getResources(type)) {
        if (auto* const found = dynamic_cast<Resource*>(resource)) {
            result.push_back(found);
        }
    }
}
