#pragma once

#include <QString>
#include <cstdint>
#include <map>
#include <memory>

class MciDevice;
struct MciCommand;

// The table of open sound objects behind mciSendString, and the commands that do not belong to
// one object (open, close, the device name "all"). It lives from its first use to the end of
// the process; every call comes from the user-interface thread.
class MciService {
public:
    static MciService& instance();
    ~MciService();
    MciService(const MciService&) = delete;
    MciService& operator=(const MciService&) = delete;

    long send(const QString& command, QString* answer);
    // Opens `element` as `type` ("" by its extension) under `alias`; `deviceId` takes the new
    // object's number.
    long open(const QString& type, const QString& element, const QString& alias, long& deviceId);
    // Closes every object.
    void closeAll();
    // When the callback handed the first frames of the last play of `alias` (steady_clock
    // nanoseconds, 0 until it has), for measuring the delay of a start.
    std::int64_t firstFrameTime(const QString& alias) const;

private:
    MciService() = default;
    long dispatch(const MciCommand& command, QString& answer);
    long openCommand(const MciCommand& command);
    long allCommand(const MciCommand& command);
    MciDevice* find(const QString& alias) const;

    std::map<QString, std::unique_ptr<MciDevice>> mDevices; // by lower-cased alias
    long mNextId = 1;
};
