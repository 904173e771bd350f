#pragma once

/// Which stacks move along with the balls while a drag or a zoom lasts, and which when it ends.
namespace stackpolicy {

enum class Stacks { None, Cards, All };

/// By the number of the policy: 2 to 6, from the laziest to the most eager. Others move nothing.
Stacks toMove(int policy, bool final);

} // namespace stackpolicy
