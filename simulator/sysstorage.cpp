// Module sys: storage beside the file system, keys and identity. What a call has acknowledged is on the disk.

#include <cstring>

#include "simulator/Board.h"
#include "simulator/ChipCall.h"
#include "simulator/ChipLayer.h"
#include "simulator/Emmc.h"
#include "simulator/SecureStorage.h"

using namespace simulator;

namespace {

// The variable that names the data index, and where it is while that is not set.
constexpr char kDataIndexVariable[] = "dataindex_path";
constexpr char kDataIndexPath[] = "/dataindex.ini";
constexpr char kDataIndex[] =
        "; The files of parameters that the information interface reads and writes.\n"
        "[files]\n"
        "panel = panel\n"
        "tuner = tuner\n"
        "ip = ip\n";

SecureStorage& secureStorage() {
    static SecureStorage& sStorage = *new SecureStorage(boardState());
    return sStorage;
}

int32_t dataIndexPath(unsigned char* buffer, size_t size) {
    if (buffer == nullptr || size == 0) {
        return kOutOfRange;
    }
    char path[Emmc::kMaxValueBytes + 1];
    int32_t status = boardEmmc().get(kDataIndexVariable, path, sizeof(path));
    if (status == kNotFound) {
        strcpy(path, kDataIndexPath);
        const Descriptor files = boardState().openFolder("files");
        if (!files) {
            return kIoError;
        }
        const FolderLock lock(files.get());
        status = lock.status() == kOk ? createFile(files.get(), kDataIndexPath + 1, kDataIndex, 0644)
                                      : lock.status();
    }
    if (status != kOk) {
        return status;
    }
    const size_t length = strlen(path);
    if (length > size) {
        return kTooLong;
    }
    memcpy(buffer, path, length);
    if (length < size) {
        buffer[length] = '\0';
    }
    return kOk;
}

}  // namespace

int32_t a_zvttvfapi_sys_get_emmc_env_var(unsigned char const* pu8Name, unsigned char* pu8Value,
                                         unsigned int u32Size) {
    return guarded(
            [&] { return boardEmmc().get(text(pu8Name), reinterpret_cast<char*>(pu8Value), u32Size); });
}

int32_t a_zvttvfapi_sys_set_emmc_env_var(unsigned char const* pu8Name, unsigned char const* pu8Value) {
    return guarded([&] { return boardEmmc().set(text(pu8Name), text(pu8Value)); });
}

int32_t a_zvttvfapi_sys_update_sys_key(unsigned char const* pu8KeyPath, bool bReplace) {
    return guarded(
            [&] { return secureStorage().putSystemKey(Sandbox(boardState()), text(pu8KeyPath), bReplace); });
}

int32_t a_zvttvfapi_sys_secure_storage_encrypt_key(unsigned char const* pu8StorageName,
                                                   unsigned char const* pu8KeyName,
                                                   unsigned char const* pu8UserKey, unsigned char u8KeySize) {
    return guarded([&] {
        return secureStorage().put(text(pu8StorageName), text(pu8KeyName), pu8UserKey, u8KeySize);
    });
}

int32_t a_zvttvfapi_sys_write_emmc(unsigned char* pu8EmmcName, unsigned int u32Offset, unsigned int u32Length,
                                   unsigned char* pu8Data) {
    return guarded([&] { return boardEmmc().write(text(pu8EmmcName), u32Offset, u32Length, pu8Data); });
}

int32_t a_zvttvfapi_sys_read_emmc(unsigned char* pu8EmmcName, unsigned int u32Offset, unsigned int u32Length,
                                  unsigned char* pu8Data) {
    return guarded([&] { return boardEmmc().read(text(pu8EmmcName), u32Offset, u32Length, pu8Data); });
}

int32_t a_zvttvfapi_sys_get_customer_hash(unsigned int u32Size, unsigned char* pu8Hash,
                                          unsigned int* pu32LengthRead) {
    return guarded([&] {
        if (pu8Hash == nullptr || pu32LengthRead == nullptr) {
            return kOutOfRange;
        }
        *pu32LengthRead = 0;
        if (u32Size < kCustomerHashBytes) {
            return kTooLong;
        }
        const int32_t status = customerHash(boardState(), pu8Hash);
        *pu32LengthRead = status == kOk ? kCustomerHashBytes : 0;
        return status;
    });
}

int32_t a_zvttvfapi_sys_get_dataindex_path(unsigned char* pu8Path, unsigned int u32Size) {
    return guarded([&] { return dataIndexPath(pu8Path, u32Size); });
}
