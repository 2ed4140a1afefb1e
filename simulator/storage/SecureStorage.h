#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>

#include "simulator/board/StateDirectory.h"

namespace simulator {

/**
 * Keys, each in a file of the folder secure/ of the state folder: encrypted and authenticated by
 * XChaCha20-Poly1305 under a key that is derived from the board's serial number, so that they mean nothing to
 * another board. No key leaves it; what is stored is told apart by a fingerprint. What is acknowledged is on
 * the disk. Any thread.
 */
class SecureStorage {
  public:
    /** Of a storage and of a key in it, each: A-Z a-z 0-9 _ -. */
    static constexpr size_t kMaxNameBytes = 64;
    static constexpr size_t kMaxKeyBytes = 255;
    static constexpr size_t kMaxKeys = 256;
    static constexpr size_t kMinSystemKeyBytes = 16;

    SecureStorage();

    /** kBadName, kOutOfRange (the size), kDenied for the storage "system", kFull. Replaces one that is there.
     */
    int32_t put(const char* storage, const char* name, const unsigned char* key, size_t size);

    /** Takes the system key from a file of 16 to 255 bytes; else kBadFile. kExists unless told to replace it.
     */
    int32_t putSystemKey(const char* path, bool replace);

    /** A line for each key: its names, size and fingerprint, or that it is damaged or another board's. */
    std::string describe() const;

  private:
    int32_t seal(const std::string& file, const unsigned char* key, size_t size, bool replace);

    StateFolder mFolder;
    std::mutex mWriting;  // held while keys are counted and one is written
};

/** 16 bytes that stand for the customer that the board was made for. */
constexpr size_t kCustomerHashBytes = 16;
int32_t customerHash(unsigned char* hash);

}  // namespace simulator
