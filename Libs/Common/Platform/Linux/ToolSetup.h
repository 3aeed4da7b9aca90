#pragma once

/** @file What a child does on its way to root, between fork() and exec; see Program::prepare. */
namespace Tavrik::Platform
{

/** For what asks for root: default signal handling, no descriptor of the host's but the standard ones. */
void PrepareLauncher();

/** For a tool of root's: the same, and none of the limits or the umask that the host has set for itself. */
void PrepareTool();

} // namespace Tavrik::Platform
