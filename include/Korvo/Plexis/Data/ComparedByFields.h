#pragma once

/// Gives a value type equality from its `Fields()`, a `std::tie` of all its members, so that the
/// list of members that make two values equal is written once, next to the members. Use inside
/// the class, after `Fields()`: the operators are hidden friends, found for that type only.
#define KORVO_COMPARED_BY_FIELDS(Type)                            \
    friend bool operator==(const Type& left, const Type& right) { \
        return left.Fields() == right.Fields();                   \
    }                                                             \
    friend bool operator!=(const Type& left, const Type& right) { \
        return !(left == right);                                  \
    }
