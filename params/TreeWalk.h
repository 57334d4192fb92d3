// A depth-first walk over the sections of a tree with a work list of its own
// instead of the call stack, so that a tree of any depth is walked with a
// flat stack: one section line of the text form makes 32,000 levels.
#pragma once

#include <utility>
#include <vector>

#include "kticore/params/Param.h"
#include "params/Held.h"

namespace kt::params {

using NameEnum = CTEnum<const char*>;

// Walks from `top` down, each section's sub-sections in the order of its
// enumerator. `walker` says what happens on the way, with a Frame of its own
// for each section (what it holds of the section while the walk is below it):
//   NameEnum* Enter(Frame&)    on arriving at a section; the enumerator of
//                              its sub-sections with one reference, or null
//                              for none;
//   bool Descend(Frame& parent, const char* name, Frame& child)
//                              whether to go into the sub-section `name`,
//                              after filling `child`;
//   void Leave(Frame&)         behind its last sub-section;
//   bool Done() const          true to end the walk at once.
template <class Frame, class Walker>
void WalkSections(Frame top, Walker& walker) {
    struct Level {
        Frame frame;
        Held<NameEnum> sections;
    };
    std::vector<Level> levels;
    auto enter = [&](Frame frame) {
        levels.push_back(Level{std::move(frame), Held<NameEnum>()});
        levels.back().sections.Reset(walker.Enter(levels.back().frame));
    };
    enter(std::move(top));
    while (!levels.empty() && !walker.Done()) {
        Level& level = levels.back();
        const char* name = nullptr;
        if (level.sections && level.sections->Next(1, &name, nullptr)) {
            Frame child;
            if (walker.Descend(level.frame, name, child))
                enter(std::move(child));
            continue;
        }
        walker.Leave(level.frame);
        levels.pop_back();
    }
}

}  // namespace kt::params
