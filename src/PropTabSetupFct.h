// The Setup tab of the properties window: its handlers.

#pragma once

// "clicked" handler of Defaults.
void ButtonSetupDefaultsPressed();

// The number of copies that the tab shows.
[[nodiscard]] int CopiesOfSetupTab();
