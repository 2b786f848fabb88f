#include "model/MirrorClass.h"

#include "core/Bytes.h"
#include "model/SiteFile.h"
#include "platform/RunTimeError.h"

#include <algorithm>
#include <limits>
#include <utility>

using platform::RunTimeError;
namespace errors = platform::errors;

QString MirrorClass::ID() const {
    return Bytes::Padded(fromModule_, 2) + Bytes::Padded(fromChannel_, 2) +
           Bytes::Padded(toModule_, 2) + Bytes::Padded(toChannel_, 2);
}

void MirrorClass::Copy(const MirrorClass& source) {
    setToModule(source.ToModule());
    setToChannel(source.ToChannel());
    setMirrorType(source.MirrorType());
    setFromModule(source.FromModule());
    setFromChannel(source.FromChannel());
}

bool MirrorClass::SaveTo(SiteFileWriter& file) const {
    for (const qint16 value : {fromModule_, fromChannel_, toModule_, toChannel_, mirrorType_})
        file.PutWord(value);
    return true;
}

bool MirrorClass::ReadFrom(SiteFileReader& file) {
    setFromModule(file.GetWord());
    setFromChannel(file.GetWord());
    setToModule(file.GetWord());
    setToChannel(file.GetWord());
    setMirrorType(file.GetWord());
    return true;
}

MirrorClass& MirrorClasses::Add(qint16 fromModule, qint16 fromChannel, qint16 toModule,
                                qint16 toChannel, qint16 mirrorType) {
    auto rule = std::make_unique<MirrorClass>();
    rule->setFromModule(fromModule);
    rule->setFromChannel(fromChannel);
    rule->setToModule(toModule);
    rule->setToChannel(toChannel);
    rule->setMirrorType(mirrorType);
    rules_.push_back(std::move(rule));
    modified_ = true;
    return *rules_.back();
}

size_t MirrorClasses::Place(int index) const {
    if (index < 1 || index > Count())
        throw RunTimeError(errors::Subscript);
    return size_t(index) - 1;
}

MirrorClass& MirrorClasses::Item(int index) {
    return *rules_[Place(index)];
}

const MirrorClass& MirrorClasses::Item(int index) const {
    return *rules_[Place(index)];
}

void MirrorClasses::Copy(const MirrorClasses& source) {
    if (&source == this)
        return;
    RemoveAll();
    for (const MirrorClass& rule : source)
        Add(0, 0, 0, 0, 0).Copy(rule);
    setModified(source.Modified());
}

const MirrorClass* MirrorClasses::GetByID(const QString& id) const {
    const auto found = std::find_if(rules_.cbegin(), rules_.cend(),
                                    [&](const auto& rule) { return rule->ID() == id; });
    return found == rules_.cend() ? nullptr : found->get();
}

MirrorClass* MirrorClasses::GetByID(const QString& id) {
    return const_cast<MirrorClass*>(std::as_const(*this).GetByID(id));
}

bool MirrorClasses::IsAlreadyPresent(const MirrorClass& mirror) const {
    return GetByID(mirror.ID()) != nullptr;
}

void MirrorClasses::Remove(int index) {
    rules_.erase(rules_.begin() + std::ptrdiff_t(Place(index)));
    modified_ = true;
}

void MirrorClasses::RemoveAll() {
    modified_ = modified_ || !rules_.empty();
    rules_.clear();
}

bool MirrorClasses::Modified() const {
    return modified_ || std::any_of(rules_.cbegin(), rules_.cend(),
                                    [](const auto& rule) { return rule->Modified(); });
}

void MirrorClasses::setModified(bool value) {
    for (MirrorClass& rule : *this)
        rule.setModified(value);
    modified_ = value;
}

bool MirrorClasses::SaveTo(SiteFileWriter& file) const {
    if (Count() > std::numeric_limits<qint16>::max())
        throw RunTimeError(errors::Overflow);
    file.PutWord(qint16(Count()));
    for (const MirrorClass& rule : *this)
        rule.SaveTo(file);
    return true;
}

bool MirrorClasses::ReadFrom(SiteFileReader& file) {
    const int count = file.GetWord();
    for (int i = 0; i < count; ++i)
        Add(0, 0, 0, 0, 0).ReadFrom(file);
    return true;
}
