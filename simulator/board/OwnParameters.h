#pragma once

#include <cstdint>
#include <string>

namespace simulator {

// What the board tells of itself, as parameters of a configuration file `board` that is none: it is nowhere
// on the disk, and cannot be written.
//
//     status:NUMBER               what that status of the library is called
//     refusal:COMMAND TEXT        why that order was refused when it was last given: the number and the text
//                                 of a send_cmd_to_factory_svc, exactly
//     refusal:FUNCTION WORD...    why that function of the chip layer refused its last call, whatever the
//                                 words
//     state:folder                the absolute path of the state folder
//     state:file                  writes the file of the state anew, silently, and tells its absolute path
//     picture:revision, picture:captured   see addOwnParameter()

/** The function whose first argument is COMMAND. */
constexpr const char* kOrderFunction = "sys_send_cmd_to_factory_svc";

/** Whether a configuration file's name is that of this one. A file of that name in ini/ is out of reach. */
bool isOwnFile(const char* file);

/** Makes a parameter known that another room tells, for good; on any thread. */
void addOwnParameter(const std::string& parameter, int32_t (*tell)(std::string* value));

/** Reads one of the parameters above; kNotFound for another one, and for what there is nothing to tell of;
 * a status of the state's file. */
int32_t ownParameter(const std::string& parameter, std::string* value);

}  // namespace simulator
