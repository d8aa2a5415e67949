#pragma once

// The way in to libqpdf: include this instead of <qpdf/QPDF.hh>.
//
// In C++20 Clang refuses libqpdf's JSON.hh (a vector of a type that is not complete yet, whose destructor
// is constexpr now). Nothing here uses it, so that Clang's tools are shown a declaration in its place.
#ifdef __clang__
#define JSON_HH
#include <map>
#include <string>
class JSON {
public:
    class Writer;
};
#endif

#include <qpdf/QPDF.hh>
