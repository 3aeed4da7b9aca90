// What asks for an administrator, in the attacks: it grants at once. Set-user-id where the driver can make it
// so. With "prompt" beside it, it first lets an attacker have the time that a user takes to answer.

#include <fcntl.h>
#include <poll.h>
#include <string>
#include <unistd.h>

int main(int argc, char** argv)
{
  const std::string folder = std::string(argv[0]).substr(0, std::string(argv[0]).rfind('/'));
  const std::string prompt = folder + "/prompt";
  if (access((prompt + "/wanted").c_str(), F_OK) == 0)
  {
    close(open((prompt + "/asked").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    for (int waited = 0; waited < 5000 && access((prompt + "/answered").c_str(), F_OK) != 0; ++waited)
      poll(nullptr, 0, 1);
  }
  if (argc < 3 || setgid(geteuid()) != 0 || setuid(geteuid()) != 0)
    return 1;
  execv(argv[2], argv + 2);
  return 1;
}
