// Calls under the names that code written for another system uses.
//
// A resource is a file beside this library. A fork reference is a heap block of 4 bytes that holds a file descriptor,
// typed as a stream; it must never reach a call of the C library. A handle is a pointer to the pointer to a block that
// never moves. Null arguments fail. Threads: reentrant; a fork or handle belongs to one thread.
#pragma once

#include <cstdio>

// Writes "system" and returns its length, 6, whatever the size. Kept: the fixed text is no folder. It is only written
// where it fits with its NUL. Pinned by compat_test "GetSystemDirectoryGivesAFixedText".
int GetSystemDirectory(char* buffer, int size);

// Kept: the first seven characters of path, the scheme of a URL, are dropped unseen, and mode is ignored. Pinned by
// compat_test "OpenDropsSevenCharacters".
std::FILE* mac_open(const char* path, const char* mode);
// The fork of the resource, to be closed with mac_close; null if there is no such file. name is a plain file name.
std::FILE* iOpenFromMainBundle(const char* name);
// Bytes read, at most size; 0 at the end or on an error.
long mac_read(char* buffer, long size, std::FILE* file);
// Moves forward by reading; an offset below 1 does nothing. 1, or 0 if it could not be read that far.
int mac_seek(std::FILE* file, int offset);
// The system's error number, 0 for none. Kept: the 4-byte block stays allocated; its owner frees it. Pinned by
// compat_test "CloseLeavesTheBlock".
int mac_close(std::FILE* file);

// A handle to a new block of size bytes; null if there is no memory.
char** NewHandle(long size);
char* GlobalLock(char** handle);  // the block
int GlobalUnlock(char** handle);  // 1
int GlobalFree(char** handle);    // 0
