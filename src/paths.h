// Every fixed place of the system. Nothing at run time or build time changes them.
#pragma once

inline constexpr char kInstallRoot[] = "/opt/orlan";
inline constexpr char kDataDir[] = "/opt/orlan/data";
inline constexpr char kUsersDir[] = "/opt/orlan/data/users";
inline constexpr char kQueuesFile[] = "/opt/orlan/data/queues.paf";
inline constexpr char kNlsDir[] = "/opt/orlan/data/nls";
inline constexpr char kModelsDir[] = "/opt/orlan/data/models";
inline constexpr char kModelsNlsDir[] = "/opt/orlan/data/models/nls";
// Earlier states of the queue list, and which queues which file declares.
inline constexpr char kStatesDir[] = "/opt/orlan/states";
inline constexpr char kOwnersFile[] = "/opt/orlan/states/declared.json";
inline constexpr char kHelpNlsDir[] = "/opt/orlan/docs/nls";
inline constexpr char kPixmapDir[] = "/opt/orlan/xpm";
inline constexpr char kFallbackPixmapDir[] = "../pixmaps";
inline constexpr char kTestPageFile[] = "/opt/orlan/data/testpage.ps";
inline constexpr char kFontmapFile[] = "/opt/orlan/afm/fontmap";
inline constexpr char kFilterProgram[] = "/opt/orlan/bin/kpxfilter";
inline constexpr char kJobsProgram[] = "/opt/orlan/bin/KPXjobs";
inline constexpr char kTransportProgram[] = "/opt/orlan/bin/kpxnbtrans";
inline constexpr char kBackendProgram[] = "/opt/orlan/bin/kpxbackend";

inline constexpr char kLpadmin[] = "/usr/lib/lpadmin";
inline constexpr char kAccept[] = "/usr/bin/accept";
inline constexpr char kEnable[] = "/usr/bin/enable";
inline constexpr char kDialogOptions[] = "/usr/lib/kpxppd";
inline constexpr char kCupsDescriptionsDir[] = "/etc/cups/ppd";  // CUPS's own
inline constexpr char kLp[] = "/usr/bin/lp";
inline constexpr char kLpstat[] = "/usr/bin/lpstat";
inline constexpr char kSpoolPrintersDir[] = "/usr/spool/lp/admins/lp/printers";
inline constexpr char kSpoolModelsDir[] = "/usr/spool/lp/model";
inline constexpr char kSpoolInterfacesDir[] = "/usr/spool/lp/admins/lp/interfaces";
