// How many copies a job can ask for: in the windows, in option files and in the words of a job.
#pragma once

inline constexpr int kMostCopies = 32767;
