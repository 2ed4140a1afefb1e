#pragma once

#include "chiplayer/types.h"

// Module sys: files, storage, keys and environment, board control.
//
// Common to all functions: they return 0 or a status of the library's own, which reaches the client unchanged
// unless the function says otherwise. Several threads call at once, the same function included; which calls
// exclude each other is the library's to decide. Paths, names and texts are NUL-terminated, may be empty, may
// hold any bytes that a client has sent, and are lent for the call. Buffers belong to the caller and are gone
// after the call.

namespace fapi_core {

/** What a_zvttvfapi_sys_send_cmd_to_factory_svc asks for. */
enum ZvtTvFApiSysFactorySvcCmd_e : uint32_t {
    /** Raise an event; the text describes it. */
    SYS_FACTORY_SVC_CMD_RAISE_EVENT = 0,
    /** Let the next call of a function end with a given status, or set the readiness; the text says which. */
    SYS_FACTORY_SVC_CMD_FORCE_STATUS = 1,
    /** Print the library's state; the text may narrow it. */
    SYS_FACTORY_SVC_CMD_DUMP_STATE = 2,
};
static_assert(sizeof(ZvtTvFApiSysFactorySvcCmd_e) == 4, "passed by value as 32 bits");

}  // namespace fapi_core

// Lifecycle: see chiplayer/types.h.
int32_t a_zvttvfapi_sys_init();
int32_t a_zvttvfapi_sys_deinit();
int32_t a_zvttvfapi_sys_reg_callback(fapi_core::ZvtTvFApiEventHandler pfnHandler);
int32_t a_zvttvfapi_sys_unreg_callback();

// Files. What a path is relative to, and which paths are refused, is the library's to define; an
// implementation that serves untrusted clients lets none leave its own folder.

/** Returns 0 when the path is a plain file that can be read. */
int32_t a_zvttvfapi_sys_check_file(unsigned char const* pu8Path);

/** Returns 0 when the path is a folder that can be listed. */
int32_t a_zvttvfapi_sys_check_folder(unsigned char const* pu8Path);

/** Makes an empty file in a folder that exists. Something of that name is left alone and refused. */
int32_t a_zvttvfapi_sys_create_file(unsigned char const* pu8Path);

/** Makes a folder in a folder that exists. Something of that name is left alone and refused. */
int32_t a_zvttvfapi_sys_create_folder(unsigned char const* pu8Path);

/** Removes a file, or a folder with all that is in it. */
int32_t a_zvttvfapi_sys_remove_file(unsigned char const* pu8Path);

/**
 * Copies a file, or a folder with all that is in it. bCopyOption: true replaces a destination that is there
 * already, false refuses it.
 */
int32_t a_zvttvfapi_sys_copy_file(unsigned char const* pu8SrcPath, unsigned char const* pu8DstPath,
                                  bool bCopyOption);

/** Sets the permission bits, 0 to 07777, of a file or folder. */
int32_t a_zvttvfapi_sys_change_file_mode(unsigned char const* pu8Path, unsigned int u32Mode);

/** Returns when everything that was written before the call is on the storage itself. */
int32_t a_zvttvfapi_sys_sync_fs();

/**
 * Computes a file's CRC-32 (that of Ethernet and of gzip: polynomial 0x04C11DB7 reflected, initial and final
 * value 0xFFFFFFFF) into *pu32Checksum, which holds 0 before. What the word holds after a failure reaches the
 * client.
 */
int32_t a_zvttvfapi_sys_get_file_checksum(unsigned char const* pu8Path, unsigned int* pu32Checksum);

/**
 * Reads up to u32Length bytes of a file, from byte u64Offset on, into pu8Data, zeroed, and puts their count,
 * never more than u32Length, into *pu32LengthRead, which holds 0 before.
 *
 * The end of the file is not a failure: fewer bytes, or none. What was counted before a failure may reach the
 * client. With u32Length 0 nothing may be written through pu8Data. The service checks the count: a larger one
 * is answered for the library with -1.
 */
int32_t a_zvttvfapi_sys_read_file(unsigned char const* pu8Path, unsigned char* pu8Data,
                                  unsigned int u32Length, unsigned long long u64Offset,
                                  unsigned int* pu32LengthRead);

/**
 * Reads the line of a file that begins at byte u64Offset into pu8Data, a zeroed buffer of u32Length bytes: at
 * most u32Length - 1 bytes, up to and without the line's end (LF or CR LF), and the terminating NUL. The end
 * of the file ends a line; at the end of the file the line is empty. With u32Length 0 nothing may be written
 * through pu8Data. A line that fills the buffer without a NUL is delivered as it is, up to the buffer's end.
 */
int32_t a_zvttvfapi_sys_read_file_one_line(unsigned char const* pu8Path, unsigned char* pu8Data,
                                           unsigned int u32Length, unsigned long long u64Offset);

/**
 * Writes u32Length bytes, at least one and NULs among them, to a file; returns 0 only when all are written.
 * pu8Mode is an open mode as fopen() takes it. The service itself asks for "a+" (append) and "w+" (replace),
 * but a client may bring any text of its own; an unknown mode is refused.
 */
int32_t a_zvttvfapi_sys_write_file(unsigned char const* pu8Path, unsigned char const* pu8Data,
                                   unsigned int u32Length, unsigned char const* pu8Mode);

// Storage beside the file systems. What a set or write has acknowledged survives a restart.

/**
 * Reads an environment variable into pu8Value, a zeroed buffer of u32Size bytes (1024), as a NUL-terminated
 * text; a value that does not fit is refused. The text left in the buffer is logged, after a failure too; one
 * without a NUL is cut at u32Size - 1 bytes.
 */
int32_t a_zvttvfapi_sys_get_emmc_env_var(unsigned char const* pu8Name, unsigned char* pu8Value,
                                         unsigned int u32Size);

/** Sets an environment variable. Returns 0 only when the value will be read back. */
int32_t a_zvttvfapi_sys_set_emmc_env_var(unsigned char const* pu8Name, unsigned char const* pu8Value);

/**
 * Installs the system key that the file at the path holds. bReplace: true replaces a key that is installed
 * already, false refuses then.
 */
int32_t a_zvttvfapi_sys_update_sys_key(unsigned char const* pu8KeyPath, bool bReplace);

/**
 * Encrypts a user key of u8KeySize (1 to 255) bytes and puts it into the secure storage, under a name within
 * a storage area. The plain key must not be kept.
 */
int32_t a_zvttvfapi_sys_secure_storage_encrypt_key(unsigned char const* pu8StorageName,
                                                   unsigned char const* pu8KeyName,
                                                   unsigned char const* pu8UserKey, unsigned char u8KeySize);

/**
 * Writes u32Length bytes, at least one, at byte u32Offset of a named eMMC area. A write that would pass the
 * area's end is refused whole. pu8EmmcName is a text that the library must not write to, whatever its type.
 */
int32_t a_zvttvfapi_sys_write_emmc(unsigned char* pu8EmmcName, unsigned int u32Offset, unsigned int u32Length,
                                   unsigned char* pu8Data);

/**
 * Reads u32Length bytes at byte u32Offset of a named eMMC area into pu8Data. A read that would pass the
 * area's end is refused. With u32Length 0 nothing may be written through pu8Data. The whole buffer, zero
 * where it was not written, reaches the client after a failure too. pu8EmmcName as for the write.
 */
int32_t a_zvttvfapi_sys_read_emmc(unsigned char* pu8EmmcName, unsigned int u32Offset, unsigned int u32Length,
                                  unsigned char* pu8Data);

/**
 * Reads the customer hash into pu8Hash, a zeroed buffer of u32Size bytes (16), and puts its count of bytes,
 * never more than u32Size, into *pu32LengthRead, which holds 0 before. The client sees -1 for every failure,
 * and for a larger count.
 */
int32_t a_zvttvfapi_sys_get_customer_hash(unsigned int u32Size, unsigned char* pu8Hash,
                                          unsigned int* pu32LengthRead);

/** Writes the data index's path into pu8Path, zeroed: at most u32Size (128) characters, which need no NUL. */
int32_t a_zvttvfapi_sys_get_dataindex_path(unsigned char* pu8Path, unsigned int u32Size);

// Board control.

/** Starts (1) or stops (0) the watchdog. */
int32_t a_zvttvfapi_sys_set_wdt(unsigned char u8Enable);

/** Not a status: any bit set in the low eight means that the watchdog runs; the other bits are not read. */
int32_t a_zvttvfapi_sys_get_wdt_status();

/**
 * Sets the spread-spectrum clock of a memory interface unit, counted from 0: its modulation frequency in kHz,
 * its deviation in units of 0.01 %, and whether it is on (1) or off (0).
 */
int32_t a_zvttvfapi_sys_set_miu_ssc(unsigned char u8MiuId, unsigned short u16Modulation,
                                    unsigned short u16Deviation, unsigned char u8Enable);

/**
 * Writes the firmware image at the path to the target of that number, and returns when it is done, which may
 * take minutes. Meanwhile it raises events of this module, type 0x10001, whose first record carries the
 * percentage done (0 to 100) and the path, and whose second the target's number and "running", or "done" or
 * "failed" in the last one.
 */
int32_t a_zvttvfapi_sys_upgrade_fw(unsigned char u8Target, char const* pcPath);

/**
 * Reads a register of a bank into *pu32Value, which holds 0 before. A value left there by a failing call does
 * not reach the client.
 */
int32_t a_zvttvfapi_sys_read_reg(unsigned int u32Bank, unsigned int u32Offset, unsigned int* pu32Value);

/** Writes a register of a bank. */
int32_t a_zvttvfapi_sys_write_reg(unsigned int u32Bank, unsigned int u32Offset, unsigned int u32Value);

/** Carries out a command of the factory service; the form of the text is the library's, for each command. */
int32_t a_zvttvfapi_sys_send_cmd_to_factory_svc(fapi_core::ZvtTvFApiSysFactorySvcCmd_e eCmd,
                                                unsigned char const* pu8Text);

/**
 * Reads the real-time clock into *pu32Time, which holds 0 before: seconds since 1970-01-01 00:00 UTC,
 * unsigned, so that it ends in 2106. What the word holds after a failure reaches the client.
 */
int32_t a_zvttvfapi_sys_get_rtc_time(unsigned int* pu32Time);
