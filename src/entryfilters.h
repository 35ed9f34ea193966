// What the filtered entries of the windows let in. Positions and lengths are in
// characters, texts are UTF-8.
#pragma once

#include <string>
#include <string_view>

// The most characters of a queue name and of a printer's address.
inline constexpr int kQueueNameLength = 128;
inline constexpr int kAddressLength = 64;

// `inserted` without the characters that a queue name may not hold; at position 0 also without its
// leading digits, since a queue name never begins with one.
std::string FilterQueueName(std::string_view inserted, int position);

// False when deleting the characters from `start` up to `end` (-1: all that follow) of the queue
// name `text` would leave a digit at its beginning.
[[nodiscard]] bool QueueNameDeletionAllowed(std::string_view text, int start, int end);

// `inserted` without blanks.
std::string FilterAddress(std::string_view inserted);

// The digits of `inserted`, for PIN and font size.
std::string FilterDigits(std::string_view inserted);

// The digits of `inserted`, for a measure, and as its decimal point `point` in the place of the
// first point or comma when the measure may take one.
std::string FilterMeasure(std::string_view inserted, bool takes_point, std::string_view point);

// `inserted` without apostrophes, equals signs and commas, for job name, user name and message.
std::string FilterJobText(std::string_view inserted);

// `inserted` without the characters that no e-mail address here may hold.
std::string FilterEmailAddress(std::string_view inserted);

// `inserted` without the characters that a custom paper's, or a custom media type's, name may not
// hold. The two sets differ on purpose.
std::string FilterCustomPaperName(std::string_view inserted);
std::string FilterCustomMediaName(std::string_view inserted);
