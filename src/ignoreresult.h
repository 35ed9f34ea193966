// Dropping a result on purpose.
#pragma once

// Takes a result that the caller has no use for; `reason` says why none is needed. For results that
// would otherwise have to be looked at ([[nodiscard]]).
template <class T>
constexpr void IgnoreResult(const T & /*result*/, const char * /*reason*/) {}
