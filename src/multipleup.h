// Several pages on one sheet, or a booklet: what the choice on the Options tab stores.

#pragma once

#include <string>

// Which boxes with page orders are shown.
enum class OrderBoxes { kNone, kLeftAndRight, kAll };

// Adds to the work copy what it has no value for: one page a sheet, order "Left", no booklet. A
// booklet that is set gets no number of pages beside it.
void AddDefaultMultipleUpSettings();

// The work copy's choice: "*Nup" as it is, kBookletKey when that is missing and a booklet is set.
// With both, as only an edited file has them, it is the pages that are printed.
std::string CurrentMultipleUp();

// The work copy's page order; "Left" when it holds none.
std::string CurrentNupOrder();

// The boxes that belong to the work copy's choice: two pages a sheet have no order when the sheet
// lies.
OrderBoxes CurrentOrderBoxes();

// Stores the choice ("1", "2", "4", "6", "9", "16" or kBookletKey) in place of the one before and
// removes the page order; where boxes are to be shown then, an order is stored by the caller.
OrderBoxes ChooseMultipleUp(const std::string &value);

// Stores the page order: "Left", "Right", "Down" or "Back".
void ChooseNupOrder(const std::string &order);

// The pictures, without directory, of a choice and of a page order, as the sheet lies now.
std::string MultipleUpPicture(const std::string &value);
std::string NupOrderPicture(const std::string &order);
