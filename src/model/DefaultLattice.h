#pragma once

/// The tree of balls of a lattice that is made anew, as data.
namespace defaultlattice {

struct TreeBall
{
    const char* path;
    const char* octaveLink; // null: none
};

/// Four rows, one for each power of 2, each a line of steps of 3. Parents stand before their children;
/// the root is not listed.
inline constexpr TreeBall BALLS[] = {
    {"/-2", nullptr},    {"/-2/-2", nullptr},   {"/-2/-2/3", "/-2/3"},    {"/-2/-2/3/3", "/-2/3/3"},
    {"/-2/-3", "/-3"},   {"/-2/3", "/3"},       {"/-2/3/3", "/3/3"},      {"/2", nullptr},
    {"/2/-3", nullptr},  {"/2/-3/-3", nullptr}, {"/2/-3/-3/-3", nullptr}, {"/2/3", nullptr},
    {"/2/3/3", nullptr}, {"/-3", "/2/-3"},      {"/-3/-3", "/2/-3/-3"},   {"/-3/-3/-3", "/2/-3/-3/-3"},
    {"/3", "/2/3"},      {"/3/3", "/2/3/3"},
};

/// Every ball of the tree has a leaf down and a leaf up for each.
inline constexpr int LEAF_PRIMES[] = {5, 7, 11, 13, 17, 19, 23, 29, 31};

} // namespace defaultlattice
