#pragma once

// One field list per value class, written once inside the class:
//
//     KORVO_FIELDS(Clip, umId, sourceUmId, ..., KORVO_THIS_SIDE_ONLY(timecode))
//
// gives the class `Fields()` (a `std::tie` of every listed member, bases first, for equality),
// equality itself, and `Descriptor()`: a constexpr tuple with one entry per list item, from which
// the wire conversion, the JSON form and the test samples are derived. A member is found on the
// wire under its own name unless the item says otherwise:
// - `KORVO_WIRE_NAME(member, wireName)`: the wire record calls the member `wireName`;
// - `KORVO_THIS_SIDE_ONLY(member)`: the member is compared and shown, but the wire has no field
//   for it (it keeps its default when read);
// - `KORVO_BASE_FIELDS(Base)`: the fields of the base class `Base` belong to this class, on the
//   wire too (listed first);
// - `KORVO_BASE_FIELDS_AS(Base, wireName)`: the fields of `Base`, carried on the wire as one
//   nested record `wireName`.
// `KORVO_NO_FIELDS(Type)` is the list of a class without members.

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>

namespace Korvo::Plexis::Data::FieldList {

/// A listed member: its name, its pointer and its wire name (null: not on the wire).
template <class Class, class Member>
struct MemberField {
    using Type = Member;
    const char* name;
    Member Class::*pointer;
    const char* wireName;
};

/// A base class whose fields come first; `wireName` null when they sit in the class's own wire
/// record, else the name of the nested record that carries them.
template <class Base>
struct BaseFields {
    using Type = Base;
    const char* wireName;
};

template <class Class, class Member, class Owner>
constexpr MemberField<Class, Member> MakeMember(const char* name, Member Owner::*pointer,
                                                const char* wireName) {
    return {name, pointer, wireName};
}

}  // namespace Korvo::Plexis::Data::FieldList

#define KORVO_WIRE_NAME(member, wireName) (KorvoMember, member, #wireName)
#define KORVO_THIS_SIDE_ONLY(member) (KorvoMember, member, nullptr)
#define KORVO_BASE_FIELDS(Base) (KorvoBase, Base, nullptr)
#define KORVO_BASE_FIELDS_AS(Base, wireName) (KorvoBase, Base, #wireName)

#define KORVO_FIELDS(Type, ...)                                                           \
    static constexpr auto Descriptor() {                                                  \
        return std::make_tuple(KORVO_PP_EACH(KORVO_FIELD_DESCRIPTOR, Type, __VA_ARGS__)); \
    }                                                                                     \
    auto Fields() const {                                                                 \
        return std::tuple_cat(KORVO_PP_EACH(KORVO_FIELD_TIE, Type, __VA_ARGS__));         \
    }                                                                                     \
    KORVO_COMPARED_BY_FIELDS(Type)

#define KORVO_NO_FIELDS(Type)            \
    static constexpr auto Descriptor() { \
        return std::tuple<>();           \
    }                                    \
    auto Fields() const {                \
        return std::tuple<>();           \
    }                                    \
    KORVO_COMPARED_BY_FIELDS(Type)

// Implementation: each item is either a bare member name or a parenthesised (tag, name, wire).
#define KORVO_FIELD_DESCRIPTOR(T, x) \
    KORVO_PP_CAT(KORVO_FIELD_DESCRIPTOR_, KORVO_PP_IS_PAREN(x))(T, x)
#define KORVO_FIELD_DESCRIPTOR_0(T, m) KORVO_FIELD_DESCRIPTOR_KorvoMember(T, m, #m)
#define KORVO_FIELD_DESCRIPTOR_1(T, x) \
    KORVO_PP_CALL(KORVO_FIELD_DESCRIPTOR_TAGGED, T, KORVO_PP_UNPAREN x)
#define KORVO_FIELD_DESCRIPTOR_TAGGED(T, tag, ...) \
    KORVO_PP_CAT(KORVO_FIELD_DESCRIPTOR_, tag)(T, __VA_ARGS__)
#define KORVO_FIELD_DESCRIPTOR_KorvoMember(T, m, wire) \
    ::Korvo::Plexis::Data::FieldList::MakeMember<T>(#m, &T::m, wire)
#define KORVO_FIELD_DESCRIPTOR_KorvoBase(T, B, wire)  \
    ::Korvo::Plexis::Data::FieldList::BaseFields<B> { \
        wire                                          \
    }

#define KORVO_FIELD_TIE(T, x) KORVO_PP_CAT(KORVO_FIELD_TIE_, KORVO_PP_IS_PAREN(x))(T, x)
#define KORVO_FIELD_TIE_0(T, m) std::tie(m)
#define KORVO_FIELD_TIE_1(T, x) KORVO_PP_CALL(KORVO_FIELD_TIE_TAGGED, T, KORVO_PP_UNPAREN x)
#define KORVO_FIELD_TIE_TAGGED(T, tag, ...) KORVO_PP_CAT(KORVO_FIELD_TIE_, tag)(T, __VA_ARGS__)
#define KORVO_FIELD_TIE_KorvoMember(T, m, wire) std::tie(m)
#define KORVO_FIELD_TIE_KorvoBase(T, B, wire) B::Fields()

#define KORVO_PP_CAT(a, b) KORVO_PP_CAT_(a, b)
#define KORVO_PP_CAT_(a, b) a##b
#define KORVO_PP_CALL(M, ...) M(__VA_ARGS__)
#define KORVO_PP_UNPAREN(...) __VA_ARGS__
#define KORVO_PP_PROBE(...) ~, 1
#define KORVO_PP_SECOND(a, b, ...) b
#define KORVO_PP_SECOND_(...) KORVO_PP_SECOND(__VA_ARGS__)
#define KORVO_PP_IS_PAREN(x) KORVO_PP_SECOND_(KORVO_PP_PROBE x, 0, ~)

// KORVO_PP_EACH(M, T, a, b, ...) is M(T, a), M(T, b), ... for up to 64 items.
#define KORVO_PP_EACH(M, T, ...) KORVO_PP_EACH_N(KORVO_PP_COUNT(__VA_ARGS__), M, T, __VA_ARGS__)
#define KORVO_PP_EACH_N(N, M, T, ...) KORVO_PP_EACH_N2(N, M, T, __VA_ARGS__)
#define KORVO_PP_EACH_N2(N, M, T, ...) KORVO_PP_EACH_##N(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_1(M, T, x) M(T, x)
#define KORVO_PP_EACH_2(M, T, x, ...) M(T, x), KORVO_PP_EACH_1(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_3(M, T, x, ...) M(T, x), KORVO_PP_EACH_2(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_4(M, T, x, ...) M(T, x), KORVO_PP_EACH_3(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_5(M, T, x, ...) M(T, x), KORVO_PP_EACH_4(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_6(M, T, x, ...) M(T, x), KORVO_PP_EACH_5(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_7(M, T, x, ...) M(T, x), KORVO_PP_EACH_6(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_8(M, T, x, ...) M(T, x), KORVO_PP_EACH_7(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_9(M, T, x, ...) M(T, x), KORVO_PP_EACH_8(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_10(M, T, x, ...) M(T, x), KORVO_PP_EACH_9(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_11(M, T, x, ...) M(T, x), KORVO_PP_EACH_10(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_12(M, T, x, ...) M(T, x), KORVO_PP_EACH_11(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_13(M, T, x, ...) M(T, x), KORVO_PP_EACH_12(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_14(M, T, x, ...) M(T, x), KORVO_PP_EACH_13(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_15(M, T, x, ...) M(T, x), KORVO_PP_EACH_14(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_16(M, T, x, ...) M(T, x), KORVO_PP_EACH_15(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_17(M, T, x, ...) M(T, x), KORVO_PP_EACH_16(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_18(M, T, x, ...) M(T, x), KORVO_PP_EACH_17(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_19(M, T, x, ...) M(T, x), KORVO_PP_EACH_18(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_20(M, T, x, ...) M(T, x), KORVO_PP_EACH_19(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_21(M, T, x, ...) M(T, x), KORVO_PP_EACH_20(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_22(M, T, x, ...) M(T, x), KORVO_PP_EACH_21(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_23(M, T, x, ...) M(T, x), KORVO_PP_EACH_22(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_24(M, T, x, ...) M(T, x), KORVO_PP_EACH_23(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_25(M, T, x, ...) M(T, x), KORVO_PP_EACH_24(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_26(M, T, x, ...) M(T, x), KORVO_PP_EACH_25(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_27(M, T, x, ...) M(T, x), KORVO_PP_EACH_26(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_28(M, T, x, ...) M(T, x), KORVO_PP_EACH_27(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_29(M, T, x, ...) M(T, x), KORVO_PP_EACH_28(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_30(M, T, x, ...) M(T, x), KORVO_PP_EACH_29(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_31(M, T, x, ...) M(T, x), KORVO_PP_EACH_30(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_32(M, T, x, ...) M(T, x), KORVO_PP_EACH_31(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_33(M, T, x, ...) M(T, x), KORVO_PP_EACH_32(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_34(M, T, x, ...) M(T, x), KORVO_PP_EACH_33(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_35(M, T, x, ...) M(T, x), KORVO_PP_EACH_34(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_36(M, T, x, ...) M(T, x), KORVO_PP_EACH_35(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_37(M, T, x, ...) M(T, x), KORVO_PP_EACH_36(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_38(M, T, x, ...) M(T, x), KORVO_PP_EACH_37(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_39(M, T, x, ...) M(T, x), KORVO_PP_EACH_38(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_40(M, T, x, ...) M(T, x), KORVO_PP_EACH_39(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_41(M, T, x, ...) M(T, x), KORVO_PP_EACH_40(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_42(M, T, x, ...) M(T, x), KORVO_PP_EACH_41(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_43(M, T, x, ...) M(T, x), KORVO_PP_EACH_42(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_44(M, T, x, ...) M(T, x), KORVO_PP_EACH_43(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_45(M, T, x, ...) M(T, x), KORVO_PP_EACH_44(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_46(M, T, x, ...) M(T, x), KORVO_PP_EACH_45(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_47(M, T, x, ...) M(T, x), KORVO_PP_EACH_46(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_48(M, T, x, ...) M(T, x), KORVO_PP_EACH_47(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_49(M, T, x, ...) M(T, x), KORVO_PP_EACH_48(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_50(M, T, x, ...) M(T, x), KORVO_PP_EACH_49(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_51(M, T, x, ...) M(T, x), KORVO_PP_EACH_50(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_52(M, T, x, ...) M(T, x), KORVO_PP_EACH_51(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_53(M, T, x, ...) M(T, x), KORVO_PP_EACH_52(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_54(M, T, x, ...) M(T, x), KORVO_PP_EACH_53(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_55(M, T, x, ...) M(T, x), KORVO_PP_EACH_54(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_56(M, T, x, ...) M(T, x), KORVO_PP_EACH_55(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_57(M, T, x, ...) M(T, x), KORVO_PP_EACH_56(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_58(M, T, x, ...) M(T, x), KORVO_PP_EACH_57(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_59(M, T, x, ...) M(T, x), KORVO_PP_EACH_58(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_60(M, T, x, ...) M(T, x), KORVO_PP_EACH_59(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_61(M, T, x, ...) M(T, x), KORVO_PP_EACH_60(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_62(M, T, x, ...) M(T, x), KORVO_PP_EACH_61(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_63(M, T, x, ...) M(T, x), KORVO_PP_EACH_62(M, T, __VA_ARGS__)
#define KORVO_PP_EACH_64(M, T, x, ...) M(T, x), KORVO_PP_EACH_63(M, T, __VA_ARGS__)
#define KORVO_PP_COUNT(...)                                                                       \
    KORVO_PP_COUNT_N(__VA_ARGS__, 64, 63, 62, 61, 60, 59, 58, 57, 56, 55, 54, 53, 52, 51, 50, 49, \
                     48, 47, 46, 45, 44, 43, 42, 41, 40, 39, 38, 37, 36, 35, 34, 33, 32, 31, 30,  \
                     29, 28, 27, 26, 25, 24, 23, 22, 21, 20, 19, 18, 17, 16, 15, 14, 13, 12, 11,  \
                     10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0)
#define KORVO_PP_COUNT_N(_1, _2, _3, _4, _5, _6, _7, _8, _9, _10, _11, _12, _13, _14, _15, _16, \
                         _17, _18, _19, _20, _21, _22, _23, _24, _25, _26, _27, _28, _29, _30,  \
                         _31, _32, _33, _34, _35, _36, _37, _38, _39, _40, _41, _42, _43, _44,  \
                         _45, _46, _47, _48, _49, _50, _51, _52, _53, _54, _55, _56, _57, _58,  \
                         _59, _60, _61, _62, _63, _64, N, ...)                                  \
    N
