#include "model/PanelClass.h"

#include "model/Models.h"
#include "model/SiteFile.h"
#include "platform/RunTimeError.h"

#include <algorithm>

namespace {

size_t Place(int index, size_t count) {
    if (index < 0 || size_t(index) >= count)
        throw platform::RunTimeError(platform::errors::Subscript);
    return size_t(index);
}

} // namespace

qint16 PanelClass::ErrCptr(int index) const {
    return errCptr_[Place(index, errCptr_.size())];
}

void PanelClass::setErrCptr(int index, qint16 value) {
    errCptr_[Place(index, errCptr_.size())] = value;
}

ChannelClass& PanelClass::Channel(int index) {
    return channels_[Place(index, channels_.size())];
}

const ChannelClass& PanelClass::Channel(int index) const {
    return channels_[Place(index, channels_.size())];
}

quint8 PanelClass::ChannelCount() const {
    return model_ == Models::Q6200XT ? 24 : 12;
}

bool PanelClass::ReportsOtherModel() const {
    const quint8 reported = model_ == Models::P5000 ? Models::Q7100 : model_;
    return model_ != Models::None && actualModel_ != Models::None && actualModel_ != reported;
}

bool PanelClass::Modified() const {
    return modified_ || std::any_of(channels_.cbegin() + 1, channels_.cend(),
                                    [](const ChannelClass& channel) { return channel.Modified(); });
}

void PanelClass::setModified(bool value) {
    modified_ = value;
    std::for_each(channels_.begin() + 1, channels_.end(),
                  [value](ChannelClass& channel) { channel.setModified(value); });
}

void PanelClass::Copy(const PanelClass& source) {
    setNumero(source.Numero());
    setModel(source.Model());
    setActualModel(source.ActualModel());
    setTitle(source.Title());
    setTitleColor(source.TitleColor());
    setActive(source.Active());
    for (int i = 1; i <= MaxChannel; ++i)
        Channel(i).Copy(source.Channel(i));
    setPresent(source.Present());
}

void PanelClass::WriteTo(SiteFileWriter& file) const {
    file.PutByte(numero_);
    file.PutByte(model_);
    file.PutFileString(title_);
    file.PutLong(titleColor_);
    file.PutBoolean(active_);
    for (int i = 1; i <= MaxChannel; ++i)
        Channel(i).WriteTo(file);
}

bool PanelClass::SaveTo(SiteFileWriter& file) {
    WriteTo(file);
    setModified(false);
    return true;
}

bool PanelClass::ReadFrom(SiteFileReader& file) {
    numero_ = file.GetByte();
    model_ = file.GetByte();
    title_ = file.GetFileString();
    titleColor_ = file.GetLong();
    active_ = file.GetBoolean();
    for (int i = 1; i <= MaxChannel; ++i)
        Channel(i).ReadFrom(file);
    modified_ = false;
    return true;
}
