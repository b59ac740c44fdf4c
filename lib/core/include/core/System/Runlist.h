// The order in which a graph's units run, in two copies: the audio thread walks the active one while a
// control thread edits the pending one, and a swap exchanges them. It owns no unit.
//
// Threads: active and epoch on the audio thread, everything else on one control thread.
#pragma once

#include <atomic>
#include <list>

#include "core/System/BlockEpoch.h"

class IDspUnit;

class Runlist {
public:
    using Units = std::list<IDspUnit*>;

    Runlist() = default;
    Runlist(const Runlist&) = delete;
    Runlist& operator=(const Runlist&) = delete;

    // What the block that is running walks; valid until its BlockEpoch::Block ends.
    const Units& active() const { return *active_.load(); }
    BlockEpoch& epoch() { return epoch_; }

    // What the edits below have made so far; equal to the active list after a swap.
    const Units& pending() const { return *pending_; }

    void append(IDspUnit* unit);
    void appendFront(IDspUnit* unit);
    // Every entry equal to unit.
    void remove(IDspUnit* unit);
    // The first entry equal to oldUnit; none is the error "doh".
    void replace(IDspUnit* oldUnit, IDspUnit* newUnit);
    // Before the first entry equal to location; at the end if there is none.
    void insertBefore(IDspUnit* unit, IDspUnit* location);
    void clear();
    // The unit behind this one, or null.
    IDspUnit* getNext(IDspUnit* unit) const;

    // Makes the pending list the active one, waits until the audio thread has left the old one, and brings
    // that up to the new. After it, no block reads a unit that the pending list did not name.
    void swap();

private:
    Units listA_;
    Units listB_;
    std::atomic<Units*> active_{&listA_};
    Units* pending_ = &listB_;
    BlockEpoch epoch_;
};
