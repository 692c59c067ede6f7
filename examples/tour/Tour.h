// The tour's parts: each shows one subsystem and prints what it does.
#pragma once

void tourFoundation();
void tourSerialization();
void tourLinalg();
void tourConfig();
void tourSystem();
void tourConcurrency();
void tourCrypt();
