/* File transfer. */
#ifndef ZK_FILE_TRANSFER_H
#define ZK_FILE_TRANSFER_H

#include <stdio.h>

#include "zk/connection.h"
#include "zk/mailboxes.h"

/* Acknowledgements: the mailboxes, and the parsers of their replies. A parser gives 0 for true, 1 for false, 9 for a
 * text that is not JSON or lacks the key, and 11 for another type (8 where told). Any thread. */
ZK_API AckReply Run_Project_Cmd[ZK_SLOTS];
ZK_API AckReply Run_Update_Software_Project_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Online_Start_Cmd[ZK_SLOTS];

ZK_API int Parser_RunProject(const char* text);
ZK_API int Parser_Run_UpdateSoftware_E(const char* text);
ZK_API int Parser_Set_Online_Start(const char* text);

/* ------------------------------------------------------------------------------------------- Streamed drag points --
 */

/* The file that streamed drag-teach points go to, or null, and the announced number of them for each connection. */
ZK_API FILE* F_SaveDragTeach;
ZK_API IntReply Save_Trajectory_Cmd[ZK_SLOTS];

#endif
