#pragma once

// Addresses of members as constants of constexpr tables.

namespace velmora {

template <auto Member> struct MemberOwner;
template <typename Value, typename Owner, Value Owner::*Member> struct MemberOwner<Member> {
    using type = Owner;
};

// The class that has the member: the design of a form, for a control.
template <auto Member> using OwnerOf = typename MemberOwner<Member>::type;

} // namespace velmora
