// The job window: its handlers.
#pragma once

// True when the program may do everything with queues and jobs.
[[nodiscard]] bool IsSuperuser();

// Begins to watch the print service; what it says is shown from the main loop's turns.
void WatchSpooler();

// After every change of a list's selection. Only one of the two lists has one.
void QueueSelectionChanged();
void JobSelectionChanged();

// "clicked" handlers of the buttons. What loses something is asked for first.
void ButtonStopQueuePressed();
void ButtonStartQueuePressed();
void ButtonRefusePressed();
void ButtonAcceptPressed();
void ButtonTestPagePressed();
void ButtonCancelJobPressed();
void ButtonHoldJobPressed();
void ButtonReleaseJobPressed();
void ButtonMoveJobPressed();
void ButtonPrintAgainPressed();
void ButtonWhyPressed();
void ButtonHelpJobsPressed();

// Also the window's close: ends the watch and the main loop.
void ButtonCloseJobsPressed();
