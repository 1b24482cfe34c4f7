/* orvo: vector mathematics over arrays for x86-64 with AVX.
 *
 * Every array function evaluates one function on each of `len` elements and
 * returns an orvoStatus: 0 when all went well, negative when nothing was done
 * (bad length or null pointer), positive when all elements were done and at
 * least one of them met a condition (the last such element's condition wins).
 *
 * Names are orvo<Family>_<type>_<level>: the level A<n> promises n correct
 * significand bits (A11, A21, A24 for single precision, A26, A50, A53 for
 * double).  The rounding family has no level: its results are exact.
 * Arrays need no alignment; a destination may be the same array as a source.
 */
#ifndef ORVO_H
#define ORVO_H

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define ORVO_API __attribute__((visibility("default")))
#else
#define ORVO_API
#endif

typedef float  orvo32f;
typedef double orvo64f;
typedef struct { orvo32f re, im; } orvo32fc;
typedef struct { orvo64f re, im; } orvo64fc;

typedef int orvoStatus;
enum {
    orvoOk              = 0,   /* no element raised a condition */
    orvoErrSize         = -6,  /* len is zero or negative; nothing written */
    orvoErrNullPtr      = -8,  /* an array pointer is null; nothing written */
    orvoWarnOverflow    = 12,  /* an element's true result overflows */
    orvoWarnUnderflow   = 17,  /* an element's true result underflows */
    orvoWarnSingularity = 18,  /* an element sits on a pole (e.g. ln 0, 1/0) */
    orvoWarnDomain      = 19   /* an element lies outside the domain */
};

typedef struct {
    int         major;
    int         minor;
    int         majorBuild;
    int         build;
    char        targetCode[4];
    const char* name;
    const char* version;
    const char* buildDate;
} orvoLibraryVersion;

/* The library's constant version record; never null, always the same. */
ORVO_API const orvoLibraryVersion* orvoGetLibVersion(void);

ORVO_API orvoStatus orvoAbs_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAbs_32fc_A11(const orvo32fc* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAbs_32fc_A21(const orvo32fc* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAbs_32fc_A24(const orvo32fc* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAbs_64f_A53(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAbs_64fc_A26(const orvo64fc* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAbs_64fc_A50(const orvo64fc* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAbs_64fc_A53(const orvo64fc* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoAcos_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAcos_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAcos_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAcos_32fc_A11(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAcos_32fc_A21(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAcos_32fc_A24(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAcos_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAcos_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAcos_64f_A53(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAcos_64fc_A26(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoAcos_64fc_A50(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoAcos_64fc_A53(const orvo64fc* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoAcosh_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAcosh_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAcosh_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAcosh_32fc_A11(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAcosh_32fc_A21(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAcosh_32fc_A24(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAcosh_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAcosh_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAcosh_64f_A53(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAcosh_64fc_A26(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoAcosh_64fc_A50(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoAcosh_64fc_A53(const orvo64fc* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoAdd_32f_A24(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAdd_32fc_A24(const orvo32fc* src1, const orvo32fc* src2, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAdd_64f_A53(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAdd_64fc_A53(const orvo64fc* src1, const orvo64fc* src2, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoArg_32fc_A11(const orvo32fc* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoArg_32fc_A21(const orvo32fc* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoArg_32fc_A24(const orvo32fc* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoArg_64fc_A26(const orvo64fc* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoArg_64fc_A50(const orvo64fc* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoArg_64fc_A53(const orvo64fc* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoAsin_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAsin_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAsin_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAsin_32fc_A11(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAsin_32fc_A21(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAsin_32fc_A24(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAsin_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAsin_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAsin_64f_A53(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAsin_64fc_A26(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoAsin_64fc_A50(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoAsin_64fc_A53(const orvo64fc* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoAsinh_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAsinh_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAsinh_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAsinh_32fc_A11(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAsinh_32fc_A21(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAsinh_32fc_A24(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAsinh_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAsinh_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAsinh_64f_A53(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAsinh_64fc_A26(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoAsinh_64fc_A50(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoAsinh_64fc_A53(const orvo64fc* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoAtan2_32f_A11(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAtan2_32f_A21(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAtan2_32f_A24(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAtan2_64f_A26(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAtan2_64f_A50(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAtan2_64f_A53(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len);

ORVO_API orvoStatus orvoAtan_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAtan_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAtan_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAtan_32fc_A11(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAtan_32fc_A21(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAtan_32fc_A24(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAtan_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAtan_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAtan_64f_A53(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAtan_64fc_A26(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoAtan_64fc_A50(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoAtan_64fc_A53(const orvo64fc* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoAtanh_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAtanh_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAtanh_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoAtanh_32fc_A11(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAtanh_32fc_A21(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAtanh_32fc_A24(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoAtanh_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAtanh_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAtanh_64f_A53(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoAtanh_64fc_A26(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoAtanh_64fc_A50(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoAtanh_64fc_A53(const orvo64fc* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoCIS_32fc_A11(const orvo32f* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoCIS_32fc_A21(const orvo32f* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoCIS_32fc_A24(const orvo32f* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoCIS_64fc_A26(const orvo64f* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoCIS_64fc_A50(const orvo64f* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoCIS_64fc_A53(const orvo64f* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoCbrt_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoCbrt_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoCbrt_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoCbrt_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoCbrt_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoCbrt_64f_A53(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoCdfNormInv_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoCdfNormInv_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoCdfNormInv_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoCdfNormInv_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoCdfNormInv_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoCdfNormInv_64f_A53(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoCdfNorm_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoCdfNorm_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoCdfNorm_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoCdfNorm_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoCdfNorm_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoCdfNorm_64f_A53(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoCeil_32f(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoCeil_64f(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoConj_32fc_A24(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoConj_64fc_A53(const orvo64fc* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoCos_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoCos_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoCos_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoCos_32fc_A11(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoCos_32fc_A21(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoCos_32fc_A24(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoCos_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoCos_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoCos_64f_A53(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoCos_64fc_A26(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoCos_64fc_A50(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoCos_64fc_A53(const orvo64fc* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoCosh_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoCosh_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoCosh_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoCosh_32fc_A11(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoCosh_32fc_A21(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoCosh_32fc_A24(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoCosh_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoCosh_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoCosh_64f_A53(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoCosh_64fc_A26(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoCosh_64fc_A50(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoCosh_64fc_A53(const orvo64fc* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoDiv_32f_A11(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len);
ORVO_API orvoStatus orvoDiv_32f_A21(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len);
ORVO_API orvoStatus orvoDiv_32f_A24(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len);
ORVO_API orvoStatus orvoDiv_32fc_A11(const orvo32fc* src1, const orvo32fc* src2, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoDiv_32fc_A21(const orvo32fc* src1, const orvo32fc* src2, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoDiv_32fc_A24(const orvo32fc* src1, const orvo32fc* src2, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoDiv_64f_A26(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len);
ORVO_API orvoStatus orvoDiv_64f_A50(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len);
ORVO_API orvoStatus orvoDiv_64f_A53(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len);
ORVO_API orvoStatus orvoDiv_64fc_A26(const orvo64fc* src1, const orvo64fc* src2, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoDiv_64fc_A50(const orvo64fc* src1, const orvo64fc* src2, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoDiv_64fc_A53(const orvo64fc* src1, const orvo64fc* src2, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoErfInv_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoErfInv_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoErfInv_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoErfInv_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoErfInv_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoErfInv_64f_A53(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoErf_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoErf_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoErf_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoErf_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoErf_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoErf_64f_A53(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoErfcInv_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoErfcInv_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoErfcInv_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoErfcInv_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoErfcInv_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoErfcInv_64f_A53(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoErfc_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoErfc_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoErfc_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoErfc_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoErfc_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoErfc_64f_A53(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoExp_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoExp_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoExp_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoExp_32fc_A11(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoExp_32fc_A21(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoExp_32fc_A24(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoExp_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoExp_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoExp_64f_A53(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoExp_64fc_A26(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoExp_64fc_A50(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoExp_64fc_A53(const orvo64fc* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoExpm1_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoExpm1_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoExpm1_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoExpm1_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoExpm1_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoExpm1_64f_A53(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoFloor_32f(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoFloor_64f(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoHypot_32f_A11(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len);
ORVO_API orvoStatus orvoHypot_32f_A21(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len);
ORVO_API orvoStatus orvoHypot_32f_A24(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len);
ORVO_API orvoStatus orvoHypot_64f_A26(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len);
ORVO_API orvoStatus orvoHypot_64f_A50(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len);
ORVO_API orvoStatus orvoHypot_64f_A53(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len);

ORVO_API orvoStatus orvoInvCbrt_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoInvCbrt_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoInvCbrt_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoInvCbrt_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoInvCbrt_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoInvCbrt_64f_A53(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoInvSqrt_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoInvSqrt_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoInvSqrt_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoInvSqrt_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoInvSqrt_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoInvSqrt_64f_A53(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoInv_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoInv_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoInv_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoInv_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoInv_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoInv_64f_A53(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoLn_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoLn_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoLn_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoLn_32fc_A11(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoLn_32fc_A21(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoLn_32fc_A24(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoLn_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoLn_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoLn_64f_A53(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoLn_64fc_A26(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoLn_64fc_A50(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoLn_64fc_A53(const orvo64fc* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoLog10_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoLog10_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoLog10_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoLog10_32fc_A11(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoLog10_32fc_A21(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoLog10_32fc_A24(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoLog10_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoLog10_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoLog10_64f_A53(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoLog10_64fc_A26(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoLog10_64fc_A50(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoLog10_64fc_A53(const orvo64fc* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoLog1p_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoLog1p_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoLog1p_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoLog1p_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoLog1p_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoLog1p_64f_A53(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoModf_32f(const orvo32f* src, orvo32f* dst1, orvo32f* dst2, int len);
ORVO_API orvoStatus orvoModf_64f(const orvo64f* src, orvo64f* dst1, orvo64f* dst2, int len);

ORVO_API orvoStatus orvoMulByConj_32fc_A11(const orvo32fc* src1, const orvo32fc* src2, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoMulByConj_32fc_A21(const orvo32fc* src1, const orvo32fc* src2, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoMulByConj_32fc_A24(const orvo32fc* src1, const orvo32fc* src2, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoMulByConj_64fc_A26(const orvo64fc* src1, const orvo64fc* src2, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoMulByConj_64fc_A50(const orvo64fc* src1, const orvo64fc* src2, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoMulByConj_64fc_A53(const orvo64fc* src1, const orvo64fc* src2, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoMul_32f_A24(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len);
ORVO_API orvoStatus orvoMul_32fc_A11(const orvo32fc* src1, const orvo32fc* src2, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoMul_32fc_A21(const orvo32fc* src1, const orvo32fc* src2, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoMul_32fc_A24(const orvo32fc* src1, const orvo32fc* src2, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoMul_64f_A53(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len);
ORVO_API orvoStatus orvoMul_64fc_A26(const orvo64fc* src1, const orvo64fc* src2, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoMul_64fc_A50(const orvo64fc* src1, const orvo64fc* src2, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoMul_64fc_A53(const orvo64fc* src1, const orvo64fc* src2, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoNearbyInt_32f(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoNearbyInt_64f(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoPow2o3_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoPow2o3_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoPow2o3_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoPow2o3_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoPow2o3_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoPow2o3_64f_A53(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoPow3o2_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoPow3o2_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoPow3o2_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoPow3o2_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoPow3o2_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoPow3o2_64f_A53(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoPow_32f_A11(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len);
ORVO_API orvoStatus orvoPow_32f_A21(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len);
ORVO_API orvoStatus orvoPow_32f_A24(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len);
ORVO_API orvoStatus orvoPow_32fc_A11(const orvo32fc* src1, const orvo32fc* src2, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoPow_32fc_A21(const orvo32fc* src1, const orvo32fc* src2, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoPow_32fc_A24(const orvo32fc* src1, const orvo32fc* src2, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoPow_64f_A26(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len);
ORVO_API orvoStatus orvoPow_64f_A50(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len);
ORVO_API orvoStatus orvoPow_64f_A53(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len);
ORVO_API orvoStatus orvoPow_64fc_A26(const orvo64fc* src1, const orvo64fc* src2, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoPow_64fc_A50(const orvo64fc* src1, const orvo64fc* src2, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoPow_64fc_A53(const orvo64fc* src1, const orvo64fc* src2, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoPowx_32f_A11(const orvo32f* src, orvo32f scalar, orvo32f* dst, int len);
ORVO_API orvoStatus orvoPowx_32f_A21(const orvo32f* src, orvo32f scalar, orvo32f* dst, int len);
ORVO_API orvoStatus orvoPowx_32f_A24(const orvo32f* src, orvo32f scalar, orvo32f* dst, int len);
ORVO_API orvoStatus orvoPowx_32fc_A11(const orvo32fc* src, orvo32fc scalar, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoPowx_32fc_A21(const orvo32fc* src, orvo32fc scalar, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoPowx_32fc_A24(const orvo32fc* src, orvo32fc scalar, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoPowx_64f_A26(const orvo64f* src, orvo64f scalar, orvo64f* dst, int len);
ORVO_API orvoStatus orvoPowx_64f_A50(const orvo64f* src, orvo64f scalar, orvo64f* dst, int len);
ORVO_API orvoStatus orvoPowx_64f_A53(const orvo64f* src, orvo64f scalar, orvo64f* dst, int len);
ORVO_API orvoStatus orvoPowx_64fc_A26(const orvo64fc* src, orvo64fc scalar, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoPowx_64fc_A50(const orvo64fc* src, orvo64fc scalar, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoPowx_64fc_A53(const orvo64fc* src, orvo64fc scalar, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoRint_32f(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoRint_64f(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoRound_32f(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoRound_64f(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoSinCos_32f_A11(const orvo32f* src, orvo32f* dst1, orvo32f* dst2, int len);
ORVO_API orvoStatus orvoSinCos_32f_A21(const orvo32f* src, orvo32f* dst1, orvo32f* dst2, int len);
ORVO_API orvoStatus orvoSinCos_32f_A24(const orvo32f* src, orvo32f* dst1, orvo32f* dst2, int len);
ORVO_API orvoStatus orvoSinCos_64f_A26(const orvo64f* src, orvo64f* dst1, orvo64f* dst2, int len);
ORVO_API orvoStatus orvoSinCos_64f_A50(const orvo64f* src, orvo64f* dst1, orvo64f* dst2, int len);
ORVO_API orvoStatus orvoSinCos_64f_A53(const orvo64f* src, orvo64f* dst1, orvo64f* dst2, int len);

ORVO_API orvoStatus orvoSin_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoSin_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoSin_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoSin_32fc_A11(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoSin_32fc_A21(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoSin_32fc_A24(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoSin_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoSin_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoSin_64f_A53(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoSin_64fc_A26(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoSin_64fc_A50(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoSin_64fc_A53(const orvo64fc* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoSinh_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoSinh_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoSinh_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoSinh_32fc_A11(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoSinh_32fc_A21(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoSinh_32fc_A24(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoSinh_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoSinh_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoSinh_64f_A53(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoSinh_64fc_A26(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoSinh_64fc_A50(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoSinh_64fc_A53(const orvo64fc* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoSqr_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoSqr_64f_A53(const orvo64f* src, orvo64f* dst, int len);

ORVO_API orvoStatus orvoSqrt_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoSqrt_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoSqrt_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoSqrt_32fc_A11(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoSqrt_32fc_A21(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoSqrt_32fc_A24(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoSqrt_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoSqrt_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoSqrt_64f_A53(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoSqrt_64fc_A26(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoSqrt_64fc_A50(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoSqrt_64fc_A53(const orvo64fc* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoSub_32f_A24(const orvo32f* src1, const orvo32f* src2, orvo32f* dst, int len);
ORVO_API orvoStatus orvoSub_32fc_A24(const orvo32fc* src1, const orvo32fc* src2, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoSub_64f_A53(const orvo64f* src1, const orvo64f* src2, orvo64f* dst, int len);
ORVO_API orvoStatus orvoSub_64fc_A53(const orvo64fc* src1, const orvo64fc* src2, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoTan_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoTan_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoTan_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoTan_32fc_A11(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoTan_32fc_A21(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoTan_32fc_A24(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoTan_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoTan_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoTan_64f_A53(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoTan_64fc_A26(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoTan_64fc_A50(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoTan_64fc_A53(const orvo64fc* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoTanh_32f_A11(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoTanh_32f_A21(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoTanh_32f_A24(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoTanh_32fc_A11(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoTanh_32fc_A21(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoTanh_32fc_A24(const orvo32fc* src, orvo32fc* dst, int len);
ORVO_API orvoStatus orvoTanh_64f_A26(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoTanh_64f_A50(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoTanh_64f_A53(const orvo64f* src, orvo64f* dst, int len);
ORVO_API orvoStatus orvoTanh_64fc_A26(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoTanh_64fc_A50(const orvo64fc* src, orvo64fc* dst, int len);
ORVO_API orvoStatus orvoTanh_64fc_A53(const orvo64fc* src, orvo64fc* dst, int len);

ORVO_API orvoStatus orvoTrunc_32f(const orvo32f* src, orvo32f* dst, int len);
ORVO_API orvoStatus orvoTrunc_64f(const orvo64f* src, orvo64f* dst, int len);

#ifdef __cplusplus
}
#endif

#endif /* ORVO_H */
