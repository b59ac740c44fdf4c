// The choice among the items of a list, with the texts that displays show in place of the items.
#pragma once

#include <string>
#include <vector>

#include "core/System/DspArchive.h"

class ListSelection {
public:
    // Reads listItems, remap and remapMinimized of the definition item at the archive's cursor. What is
    // missing comes from the fallback: the items shown are the items themselves then.
    struct Messages {
        const char* remapWithoutItems;
        const char* remapMinimizedWithoutItems;
    };
    ListSelection(DspArchive& archive, const std::vector<std::string>& fallback, const Messages& messages);

    // Makes the list count items long; what is missing is "empty".
    void resize(int count);
    int size() const { return static_cast<int>(items_.size()); }
    int index() const { return index_; }
    // The item chosen; "empty" for a list without items.
    const std::string& item() const;

    // Index of an item, -1 if there is none of this text.
    int find(const std::string& item) const;
    // Where panel inputs lead; they don't choose yet.
    int indexOfPosition(float position) const;
    int indexOfEncoder(int ticks) const;
    int indexOfBool(bool on) const;  // first or last

    // Chooses; an index out of range leaves the choice, and what is shown is "empty" until the next.
    void choose(int index);

    float position() const;
    std::string shown() const;
    std::string shownMinimized() const;

private:
    std::string textAt(const std::vector<std::string>& texts) const;

    std::vector<std::string> items_;
    std::vector<std::string> remap_;
    std::vector<std::string> remapMinimized_;
    int index_ = 0;
    bool isKnown_ = true;
};
