// Obstacles in a file's place: everything that is no ordinary file of our own.
#pragma once

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "BrellCore/Support/UniqueFd.h"

namespace brell::testing {

enum class Obstacle {
    linkToFile,     // to the file "victim" of the folder elsewhere
    linkToNothing,  // to a name in the folder elsewhere that is free
    linkToItself,
    linkToFolder,  // elsewhere itself
    linkToZeros,   // a device without an end
    linkToFull,    // a device without any room
    linkToTerminal,
    pipe,
    socket,
    folder,
    huge,  // a file larger than any memory, which takes no room
};
inline constexpr std::array<const char*, 11> obstacleNames{"a link to a file",
                                                           "a link to nothing",
                                                           "a link to itself",
                                                           "a link to a folder",
                                                           "a link to /dev/zero",
                                                           "a link to /dev/full",
                                                           "a link to a terminal",
                                                           "a named pipe",
                                                           "a socket",
                                                           "a folder",
                                                           "a huge file"};

inline const char* nameOf(Obstacle obstacle) {
    return obstacleNames.at(static_cast<std::size_t>(obstacle));
}

inline constexpr auto obstacles = [] {
    std::array<Obstacle, obstacleNames.size()> all{};
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<Obstacle>(i);
    return all;
}();

// A socket's address has little room for a path: it is made elsewhere under a short one and moved.
inline void makeSocket(const std::filesystem::path& place) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string shortPath = "/tmp/brell-socket-" + std::to_string(::getpid());
    std::memcpy(address.sun_path, shortPath.c_str(), shortPath.size() + 1);
    const UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    ::unlink(shortPath.c_str());
    if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error("no socket");
    std::error_code otherDisk;
    std::filesystem::rename(shortPath, place, otherDisk);
    if (!otherDisk) return;
    ::unlink(shortPath.c_str());
    if (::mknod(place.c_str(), S_IFSOCK | 0600, 0) != 0) throw std::runtime_error("no socket");
}

// Puts it in the place of whatever stands there.
inline void place(Obstacle obstacle, const std::filesystem::path& at,
                  const std::filesystem::path& elsewhere) {
    namespace fs = std::filesystem;
    fs::remove_all(at);
    fs::create_directories(at.parent_path());
    switch (obstacle) {
        case Obstacle::linkToFile: return fs::create_symlink(elsewhere / "victim", at);
        case Obstacle::linkToNothing: return fs::create_symlink(elsewhere / "nothing", at);
        case Obstacle::linkToItself: return fs::create_symlink(at, at);
        case Obstacle::linkToFolder: return fs::create_symlink(elsewhere, at);
        case Obstacle::linkToZeros: return fs::create_symlink("/dev/zero", at);
        case Obstacle::linkToFull:  // macOS has no such device
            return fs::create_symlink(fs::exists("/dev/full") ? "/dev/full" : "/dev/null", at);
        case Obstacle::linkToTerminal: return fs::create_symlink("/dev/ptmx", at);
        case Obstacle::pipe:
            if (::mkfifo(at.c_str(), 0600) != 0) throw std::runtime_error("no pipe");
            return;
        case Obstacle::socket: return makeSocket(at);
        case Obstacle::folder:
            fs::create_directory(at);
            fs::create_directory(at / "inside");
            return;
        case Obstacle::huge:
            UniqueFd(::open(at.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
            fs::resize_file(at, std::uintmax_t{1} << 40);
            return;
    }
}

}  // namespace brell::testing
