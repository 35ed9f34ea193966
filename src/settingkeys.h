// The keys of settings: as printer descriptions, the queue list and option files have them.
#pragma once

// Features of printers that rules know by name; featuretable.h has those with a list of options.
inline constexpr char kPageSizeKey[] = "*PageSize";
inline constexpr char kPageRegionKey[] = "*PageRegion";
inline constexpr char kMediaTypeKey[] = "*MediaType";
inline constexpr char kInputSlotKey[] = "*InputSlot";
inline constexpr char kCollateKey[] = "*Collate";
inline constexpr char kDuplexKey[] = "*Duplex";
inline constexpr char kOutputBinKey[] = "*OutputBin";
inline constexpr char kJogKey[] = "*Jog";
inline constexpr char kStapleKey[] = "*StapleLocation";
inline constexpr char kPunchKey[] = "*Punch";
inline constexpr char kOrientationKey[] = "*Orientation";
inline constexpr char kEdgeToEdgeKey[] = "*EdgeToEdge";
inline constexpr char kResolutionKey[] = "*Resolution";
inline constexpr char kOutputModeKey[] = "*OutputMode";
inline constexpr char kHalfToneKey[] = "*HalfTone";
inline constexpr char kDeliveryKey[] = "*Delivery";
inline constexpr char kNotificationKey[] = "*EmailNotification";

// Installable options.
inline constexpr char kMemoryKey[] = "*InstalledMemory";
inline constexpr char kFeederKey[] = "*OptionHCF";
inline constexpr char kFinisherKey[] = "*OptionFinisher";
inline constexpr char kPunchUnitKey[] = "*OptionPunch";
inline constexpr char kTray4Key[] = "*OptionTray4";
inline constexpr char kBypassTrayKey[] = "*OptionBypassTray";

// What the program keeps beside the printer's features.
inline constexpr char kNupKey[] = "*Nup";
inline constexpr char kNupOrderKey[] = "*NupOrder";
inline constexpr char kBookletKey[] = "*Booklet";
inline constexpr char kCopiesKey[] = "*NrCopies";
inline constexpr char kFontNameKey[] = "*FontName";
inline constexpr char kFontSizeKey[] = "*FontSize";
inline constexpr char kTextHeaderKey[] = "*TextHeader";
inline constexpr char kTextLineNumbersKey[] = "*TextLineNumbers";
inline constexpr char kTextColumnsKey[] = "*TextColumns";
inline constexpr char kTextWrapKey[] = "*TextWrap";
inline constexpr char kTextCpiKey[] = "*TextCPI";
inline constexpr char kTextLpiKey[] = "*TextLPI";
inline constexpr char kTextLeftKey[] = "*TextLeft";
inline constexpr char kTextRightKey[] = "*TextRight";
inline constexpr char kTextTopKey[] = "*TextTop";
inline constexpr char kTextBottomKey[] = "*TextBottom";
inline constexpr char kJobNameKey[] = "*JobName";
inline constexpr char kUserNameKey[] = "*UserName";
inline constexpr char kPinKey[] = "*DeliveryPIN";
inline constexpr char kEmailAddressKey[] = "*EmailAddress";
inline constexpr char kEmailMessageKey[] = "*EmailMessage";

// The queue's own paper sizes and media types: the keys of their lines in option files, and what a
// choice of one counts as in constraints, with the option "True".
inline constexpr char kCustomPaperKey[] = "*CustomPaperSize";
inline constexpr char kCustomMediaKey[] = "*CustomMediaType";
inline constexpr char kCustomPageSizeFeature[] = "*CustomPageSize";
inline constexpr char kCustomMediaTypeFeature[] = "*CustomMediaType";
