#include "ui/lattice/StackPolicy.h"

namespace stackpolicy {

namespace {

struct Row
{
    int policy;
    Stacks during;
    Stacks atEnd;
};

constexpr Row ROWS[] = {
    {2, Stacks::None, Stacks::Cards}, {3, Stacks::None, Stacks::All}, {4, Stacks::Cards, Stacks::Cards},
    {5, Stacks::Cards, Stacks::All},  {6, Stacks::All, Stacks::All},
};

} // namespace

Stacks toMove(int policy, bool final)
{
    for (const Row& row : ROWS) {
        if (row.policy == policy)
            return final ? row.atEnd : row.during;
    }
    return Stacks::None;
}

} // namespace stackpolicy
