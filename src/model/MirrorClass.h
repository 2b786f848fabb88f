#pragma once

#include "model/Replace.h"

#include <QString>
#include <memory>
#include <vector>

class SiteFileReader;
class SiteFileWriter;

/// A rule that shows on one module what happens on another. Names panels by number, so that it
/// outlives a panel object.
class MirrorClass {
public:
    /// Kinds of mirrors.
    static constexpr qint16 NoKind = 0;
    static constexpr qint16 Permanent = 1;
    static constexpr qint16 Pulse = 2;

    /// Source channel, 1 to 24; 0 for the panel as a whole.
    qint16 FromChannel() const { return fromChannel_; }
    void setFromChannel(qint16 value) { Change(fromChannel_, value); }
    /// Bus number of the source panel.
    qint16 FromModule() const { return fromModule_; }
    void setFromModule(qint16 value) { Change(fromModule_, value); }
    /// The end points, two digits each: source panel and channel, destination panel and channel.
    /// The kind is no part of it.
    QString ID() const;
    qint16 MirrorType() const { return mirrorType_; }
    void setMirrorType(qint16 value) { Change(mirrorType_, value); }
    bool Modified() const { return modified_; }
    void setModified(bool value) { modified_ = value; }
    /// Destination channel; 0 without channel addressing and for a whole panel.
    qint16 ToChannel() const { return toChannel_; }
    void setToChannel(qint16 value) { Change(toChannel_, value); }
    /// Bus number of the destination panel.
    qint16 ToModule() const { return toModule_; }
    void setToModule(qint16 value) { Change(toModule_, value); }

    /// Takes the five values through the setters.
    void Copy(const MirrorClass& source);
    /// Write and read the rule's record of ten bytes. Always true; the mark stays.
    bool SaveTo(SiteFileWriter& file) const;
    bool ReadFrom(SiteFileReader& file);

private:
    void Change(qint16& field, qint16 value) { modified_ = Replace(field, value) || modified_; }

    qint16 fromModule_ = 0;
    qint16 fromChannel_ = 0;
    qint16 toModule_ = 0;
    qint16 toChannel_ = 0;
    qint16 mirrorType_ = 0;
    bool modified_ = false;
};

/// The rules of a site in the order of their making; positions count from 1. A rule stays where it
/// is in memory until it is removed.
class MirrorClasses {
    using Rules = std::vector<std::unique_ptr<MirrorClass>>;

    /// Walks over the rules themselves.
    template <class Rule, class Inner> class Walker {
    public:
        explicit Walker(Inner inner)
            : inner_(inner) {}
        Rule& operator*() const { return **inner_; }
        Walker& operator++() {
            ++inner_;
            return *this;
        }
        bool operator==(const Walker& other) const = default;

    private:
        Inner inner_;
    };

public:
    MirrorClasses() = default;
    MirrorClasses(const MirrorClasses&) = delete;
    MirrorClasses& operator=(const MirrorClasses&) = delete;

    /// Appends a rule and raises the own mark.
    MirrorClass& Add(qint16 fromModule, qint16 fromChannel, qint16 toModule, qint16 toChannel,
                     qint16 mirrorType);
    /// The rule at a position. Throws RunTimeError `Subscript` outside 1 to Count().
    MirrorClass& Item(int index);
    const MirrorClass& Item(int index) const;
    /// Replaces the content by copies and takes the source's mark.
    void Copy(const MirrorClasses& source);
    qint32 Count() const { return qint32(rules_.size()); }
    /// First rule of that ID, or null.
    MirrorClass* GetByID(const QString& id);
    const MirrorClass* GetByID(const QString& id) const;
    /// True when a rule between the same end points is in the list, of whatever kind.
    bool IsAlreadyPresent(const MirrorClass& mirror) const;
    /// Removes a rule and raises the own mark. Throws RunTimeError `Subscript` like Item.
    void Remove(int index);
    /// Empties the list; an empty one isn't marked by it.
    void RemoveAll();

    auto begin() { return Walker<MirrorClass, Rules::iterator>(rules_.begin()); }
    auto end() { return Walker<MirrorClass, Rules::iterator>(rules_.end()); }
    auto begin() const { return Walker<const MirrorClass, Rules::const_iterator>(rules_.cbegin()); }
    auto end() const { return Walker<const MirrorClass, Rules::const_iterator>(rules_.cend()); }

    /// The own mark or that of a rule.
    bool Modified() const;
    /// Sets the own mark and those of the rules.
    void setModified(bool value);

    /// Write and read the count and the records. Reading appends; neither lowers a mark. Always
    /// true. Throws RunTimeError `Overflow` for more rules than the count can tell.
    bool SaveTo(SiteFileWriter& file) const;
    bool ReadFrom(SiteFileReader& file);

private:
    size_t Place(int index) const;

    Rules rules_;
    bool modified_ = false;
};
