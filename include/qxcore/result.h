/**
 * @file
 * Result codes, and the mapping from the platform's error numbers to them.
 */
#ifndef QXCORE_RESULT_H
#define QXCORE_RESULT_H

#include <qxcore/base.h>

/** Success is a result that is not negative: a few functions have a positive success. */
#define QX_SUCCEEDED(result) ((QXResult)(result) >= 0)
#define QX_FAILED(result) ((QXResult)(result) < 0)
#define QXFAILED(result) QX_FAILED(result)

#define QX_S_OK ((QXResult)0)                      /**< success */
#define QX_E_NOTIMPL ((QXResult)0x80004001)        /**< not offered by this object or platform */
#define QX_E_POINTER ((QXResult)0x80004003)        /**< a block whose size cannot be found */
#define QX_E_ABORT ((QXResult)0x80004004)          /**< a converter callback was refused */
#define QX_E_FAIL ((QXResult)0x80004005)           /**< unspecified failure; a busy lock */
#define QX_E_NOTINITIALIZED ((QXResult)0x80004006) /**< the module is not marked initialised */
#define QX_E_BADKEY ((QXResult)0x80004007)         /**< an unknown configuration backend */
#define QX_E_BUFFERTOOSMALL ((QXResult)0x80004009) /**< the caller's buffer is too short */
#define QX_E_NOTREGISTERED ((QXResult)0x80040154)  /**< class not registered */
#define QX_E_NOTFOUND ((QXResult)0x80070002)       /**< file, path, key or value not found */
#define QX_E_ACCESSDENIED ((QXResult)0x80070005)   /**< access denied, sharing violation */
#define QX_E_HANDLE ((QXResult)0x80070006)         /**< invalid handle */
#define QX_E_OUTOFMEMORY ((QXResult)0x8007000E)    /**< an allocation failed */
#define QX_E_EOF ((QXResult)0x80070026)            /**< end of a file or of an enumeration */
#define QX_E_INVALIDARG ((QXResult)0x80070057)     /**< bad argument */
#define QX_E_ALREADYEXISTS ((QXResult)0x800700B7)  /**< the object exists */
#define QX_E_TIMEOUT ((QXResult)0x800705B4)        /**< a timed wait ran out */
#define QX_E_ILLEGALCHAR ((QXResult)0x8BB34101)    /**< bad character in a conversion */
#define QX_E_NOCONVERTER ((QXResult)0x8BB34103)    /**< a converter object without converter */

QX_BEGIN_DECLS

/**
 * Turns an error number of the platform into a result code.
 *
 * The numbers are those of the reference platform, on every platform. The mapping is closed:
 * | number | result |
 * |---|---|
 * | 0 | QX_S_OK |
 * | 2 file not found, 3 path not found | QX_E_NOTFOUND |
 * | 5 access denied, 32 sharing violation | QX_E_ACCESSDENIED |
 * | 6 invalid handle | QX_E_HANDLE |
 * | 14 out of memory | QX_E_OUTOFMEMORY |
 * | 183 already exists | QX_E_ALREADYEXISTS |
 * | 258 wait timed out | QX_E_TIMEOUT |
 * | any other | QX_E_FAIL; the number is lost |
 *
 * @param nativeCode  the error number.
 * @return a result of the table. Never fails; any thread may call.
 */
QX_API QXResult QXResultFromNative(uint32_t nativeCode);

QX_END_DECLS

#endif
