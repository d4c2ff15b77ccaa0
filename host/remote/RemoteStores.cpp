#include "host/remote/RemoteStores.h"

#include "ole/os/OS.h"

RemoteStores::RemoteStores(RemoteLimits const& limits, RemoteClock clock)
    : client_(std::make_shared<HttpClient>(limits, std::move(clock))),
      files_(client_, OS()->getFileManager()),
      spaces_(client_, *ProjectSpacesManager::instance()),
      filesBefore_(installFileManager(&files_)),
      spacesBefore_(ProjectSpacesManager::install(&spaces_)) {}

RemoteStores::~RemoteStores() {
    ProjectSpacesManager::install(spacesBefore_);
    installFileManager(filesBefore_);
}
