#include "toolkit/edit/EditInfo.h"

namespace {

std::uint32_t countOf(Edit const& edit, EditChanType type) {
    Vector<int> channels;
    edit.getChans(channels, type, Edit::allChannels);
    return static_cast<std::uint32_t>(channels.size());
}

}  // namespace

EditInfo::EditInfo(Cookie const& cookie) : cookie_(cookie) {
    EditPtr edit;
    edit.i_open(cookie);
    if (edit) {
        logType_ = edit->getLogType();
        videoCount_ = countOf(*edit.get(), videoChannel);
        audioCount_ = countOf(*edit.get(), audioChannel);
    }
}

std::uint32_t EditInfo::getNumChans(EditChanType type, EditChanSubType) const {
    return type == videoChannel ? videoCount_ : type == audioChannel ? audioCount_ : 0;
}

LightweightString<char> EditInfo::getAttrib(LightweightString<char> const& name) const {
    EditPtr edit;
    edit.i_open(cookie_);
    return edit ? edit->getAttrib(name) : LightweightString<char>();
}
