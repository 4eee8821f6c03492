#pragma once

/// Marks what a shared library of the kit exports; everything else stays inside it. Static builds have it too.
#define ZVAPIKIT_API __attribute__((visibility("default")))
