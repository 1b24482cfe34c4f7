// The catalogue as data, for the tools that walk over every function: tests,
// report and benchmarks.  Expanded from the same list as the entry table.
#pragma once

namespace orvo {

enum class Shape { Unary, Binary, ScalarRight, Pair, ComplexToReal, RealToComplex };
enum class Style { Plain, Blocked, Quiet, Guarded, GuardedX87, X87, X87Double, X87Round, Round, Wrapper };
enum class Checks { LenFirst, PtrFirst };
enum class ElementType { F32, F64, C32, C64 };

struct CatalogueEntry {
    const char* name;        // exported name
    const char* family;
    ElementType type;
    const char* level;       // "A11" ... "A53", or "" for exact families
    Shape shape;
    Style style;
    int block;
    Checks checks;
    const char* sameCodeAs;  // level with the same instructions, or ""
    bool built;
};

namespace catalogue_detail {
constexpr ElementType F32 = ElementType::F32, F64 = ElementType::F64, C32 = ElementType::C32, C64 = ElementType::C64;
constexpr const char* levelText(const char* s) { return s[0] == 'N' ? "" : s; }
}  // namespace catalogue_detail

#define ORVO_TYPE_32f catalogue_detail::F32
#define ORVO_TYPE_64f catalogue_detail::F64
#define ORVO_TYPE_32fc catalogue_detail::C32
#define ORVO_TYPE_64fc catalogue_detail::C64
inline constexpr CatalogueEntry kCatalogue[] = {
#define ORVO_ENTRY(Name, Family, Type, Level, Shape_, Style_, Block, Checks_, SameCodeAs, Built)                   \
    {"orvo" #Name, #Family, ORVO_TYPE_##Type, catalogue_detail::levelText(#Level), Shape::Shape_, Style::Style_, Block, \
     Checks::Checks_, catalogue_detail::levelText(#SameCodeAs), Built != 0},
#include "frame/catalogue.def"
#undef ORVO_ENTRY
};
#undef ORVO_TYPE_32f
#undef ORVO_TYPE_64f
#undef ORVO_TYPE_32fc
#undef ORVO_TYPE_64fc

inline constexpr int kCatalogueSize = sizeof(kCatalogue) / sizeof(kCatalogue[0]);

// Bytes of one element of the arrays a function reads and writes.
constexpr int elementBytes(ElementType t) { return t == ElementType::F32 ? 4 : t == ElementType::C64 ? 16 : 8; }
constexpr int realBytes(ElementType t) { return t == ElementType::F32 || t == ElementType::C32 ? 4 : 8; }
constexpr bool isComplex(ElementType t) { return t == ElementType::C32 || t == ElementType::C64; }

}  // namespace orvo
