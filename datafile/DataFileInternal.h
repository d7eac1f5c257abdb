// Helpers shared by the parsers of the data file; not for other rooms.
#pragma once

#include <cstdio>

// Formats a message into a buffer of 4097 characters and shows it with the
// host's error dialog.
void dataFileShowError(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Formats a message like dataFileShowError and shows it as a message box of
// the given ZorMessageBoxType.
void dataFileShowBox(int messageBoxType, const char* format, ...) __attribute__((format(printf, 2, 3)));

// Reads up to and including the next '('. False at end of file or on a read
// error, with no message.
bool dataFileSkipPastOpenParen(FILE* stream);
