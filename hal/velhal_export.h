/*
 * Export markers of VelHal.dll. Compiles as C and as C++.
 *
 * A class marked VELHAL_API exports every member it declares, private ones too, so an exported
 * class declares its public surface and its data only: its helpers are functions in its .cpp
 * (or members of a nested struct defined there), and a private constructor is defaulted in the
 * class. tests/data/velhal_exports.txt lists what the DLL exports.
 */
#ifndef VELHAL_EXPORT_H_
#define VELHAL_EXPORT_H_

#if defined(VELHAL_BUILDING)
#define VELHAL_API __declspec(dllexport)
#else
#define VELHAL_API __declspec(dllimport)
#endif

#ifdef __cplusplus
#define VELHAL_EXTERN_C extern "C"
#else
#define VELHAL_EXTERN_C extern
#endif

/* Flat entry points: undecorated names, the platform's standard x64 calling convention. */
#define VELHAL_C_API VELHAL_EXTERN_C VELHAL_API

#endif /* VELHAL_EXPORT_H_ */
