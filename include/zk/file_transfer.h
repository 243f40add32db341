/*
 * File transfer: projects and software updates to the controller, recorded drag-teach trajectories from it; and a few
 * small commands.
 *
 * Files share the connection with all other requests. While a project is sent, IsSendFile is 1: no queued request is
 * written, and the plain names return 18 on all connections. An update does not pause the queue: send no command until
 * it has ended, or the controller takes your requests for bytes of the file. One transfer per connection at a time. All
 * calls block. They share the statuses 5 not an open connection, 7 no reply in time, 9 or 11 a broken reply. Paths are
 * bytes as the system takes them, with a length that does not count the end mark. Application threads.
 */
#ifndef ZK_FILE_TRANSFER_H
#define ZK_FILE_TRANSFER_H

#include <stdio.h>

#include "zk/connection.h"

#define ZK_PATH_SIZE 300

/* A project to send. */
typedef struct ProjectSendParams {
    char project_path[ZK_PATH_SIZE];
    int32_t project_path_len; /* bytes of the path, up to 300 */
    int32_t plan_speed;       /* percent */
    int32_t only_save;        /* non-zero: the controller stores the program and does not run it */
    int32_t save_id;          /* the id to store it under; 0: it is not stored */
    int32_t step_flag;        /* low byte non-zero: runs line by line, each on Set_Online_Next_E */
    int32_t auto_start;       /* low byte non-zero: starts with the controller */
    int32_t project_type;     /* non-zero: sent as a copy with two header lines, with the time in its name */
} ProjectSendParams;

ZK_STATIC_ASSERT(sizeof(ProjectSendParams) == 328 && offsetof(ProjectSendParams, project_path_len) == 300 &&
                     offsetof(ProjectSendParams, project_type) == 324,
                 "layout of ProjectSendParams");

/* Progress of a transfer: bytes sent, bytes in all, and the pointer that was passed with the callback. Called on the
 * transferring thread, first with 0 bytes, then for each hundredth that was sent, last with all. */
typedef void (*ZK_TransferProgress)(int64_t sent, int64_t total, void* user);

/* ----------------------------------------------------------------------------------------- Project to controller -- */

/*
 * Sends a project, a text file with one instruction a line, and waits for the controller's verdict. The project's name
 * is that of the file up to the last dot. After the verdict `err_line`, if not null, gets the number of the line that
 * the controller rejects, or 0.
 *
 * Returns 0; 16 when the controller refuses the project or a line of it; 18 when a transfer is running; 15 for a length
 * above 300, 17 for a file that cannot be read or is larger than 2 GiB; 6 when the request could not be written; 7 when
 * no reply comes within m_nOutTime, or within m_nOutTime + 10 s after the last byte, or when the controller stops
 * reading for as long, or within 1 s after it closes the connection. A project name that makes the request longer than
 * 299 bytes ends the process; on a connection of ZK_Connect it returns 19.
 *
 * With a non-zero project_type the file is copied to <directory>//<name><time>.txt with two header lines in front. The
 * copy is sent and remains. Then a path without '/' returns -4, and a file that cannot be read ends the process with
 * status 1; on a connection of ZK_Connect it returns 17.
 *
 * The project is sent ten bytes at a time. A zero byte, and what follows it in its ten, is not sent.
 *
 * ZK_Send_TrajectoryFile_With_Progress does the same and reports its progress, unless the callback is null.
 */
ZK_API int Send_TrajectoryFile(ArmSocket socket, int32_t* err_line, ProjectSendParams params);
ZK_API int ZK_Send_TrajectoryFile_With_Progress(ArmSocket socket, int32_t* err_line, ProjectSendParams params,
                                                ZK_TransferProgress progress, void* user);

/* The steps of Send_TrajectoryFile, for applications that set IsSendFile themselves. Run_Project_Block announces a
 * project (0; 16 when refused; 6 when the announcement could not be written), Send_Project_Block sends its bytes. 19
 * for a null name, path or data. */
ZK_API int Send_TrajectoryFile_Block(ArmSocket socket, int32_t save_id, int32_t only_save, const char* path,
                                     int32_t path_len, int32_t plan_speed, uint8_t auto_start, uint8_t step_flag,
                                     int32_t* err_line, int32_t project_type);
ZK_API int Run_Project_Block(ArmSocket socket, int32_t save_id, int32_t only_save, const char* name, int32_t name_len,
                             int32_t file_size, int32_t plan_speed, uint8_t auto_start, uint8_t step_flag);
ZK_API int Send_Project_Block(ArmSocket socket, const char* data, int32_t size, int32_t* err_line);

/* The local time as "2024-05-17 10_12_13", in a buffer that the next call overwrites. One thread at a time. */
ZK_API const char* zk_get_cur_time(void);

/* Copies a text file with two header lines in front: the connection's joint count, and the number of lines. A target
 * that cannot be written is reported on standard error; a source that cannot be read ends the process with status 1,
 * but on a connection of ZK_Connect. */
ZK_API void add_lines_to_file(ArmSocket socket, const char* source, const char* target);

/* Counts the lines of a text file; a line of n characters, with its line feed, counts as 1 + n / 1024. A file that
 * cannot be read ends the process with status 1. Any thread. */
ZK_API int countLinesInFile(const char* path);

/* ------------------------------------------------------------------------------------------ Update to controller -- */

/*
 * Sends a software update, a file of any bytes, and waits for the controller's verdict. The file must be writable too.
 *
 * Returns 0; 15 for a length above 300; 16 for a path without '/' or '\', or when the controller refuses; 17 for a file
 * that cannot be opened, is empty or larger than 2 GiB; 7 when no reply comes within m_nOutTime, or within m_nOutTime +
 * 10 s after the last byte, or when the controller stops reading for as long, or within 1 s after it closes the
 * connection; 19 for a null path. A name that makes the request longer than 299 bytes ends the process; on a connection
 * of ZK_Connect it returns 19, as does one with a quote, a backslash or a line end.
 *
 * ZK_UpdataSoftWare_With_Progress does the same and reports its progress, unless the callback is null.
 */
ZK_API int UpdataSoftWare_Block_E(ArmSocket socket, const char* path, int32_t path_len);
ZK_API int ZK_UpdataSoftWare_With_Progress(ArmSocket socket, const char* path, int32_t path_len,
                                           ZK_TransferProgress progress, void* user);

/* The steps of UpdataSoftWare_Block_E: the announcement, which is also printed on standard output, and the bytes. The
 * second uses at most 1023 bytes of the path. */
ZK_API int Run_Update_Software_Block_E(ArmSocket socket, const char* name, int32_t name_len, int32_t file_size);
ZK_API int Send_Update_Software_Block_E(ArmSocket socket, const char* path, int32_t path_len);

/* ------------------------------------------------------------------------------------- Drag trajectory to a file -- */

/*
 * Saves the trajectory of the last drag teaching to a local file, one point a line. The file is created or emptied;
 * `total` gets the number of points. The points arrive after the call has returned: the file is complete, and closed,
 * when F_SaveDragTeach is null again. A save that was cut off leaves its count of points, and the next save closes its
 * file that many points early.
 *
 * Returns 0; 18 during a file transfer; 22 when the file cannot be created; 16 for a path without '/' or '\' (the file
 * stays open); 24 when there is nothing to save, 1 when the controller refuses; 7 when no reply comes within m_nOutTime
 * + 30 s (the file stays open, for points that come later); 19 for a null pointer.
 *
 * Save_Trajectory tests for a file transfer and waits 2 ms first. Save_Drag_Teach_File_NonBlock blocks too: it waits
 * m_nOutTime, closes the file when no reply comes, and leaves it open when the controller refuses.
 */
ZK_API FILE* F_SaveDragTeach;    /* the file of the save in progress, or null */
ZK_API int32_t drag_teach_count; /* points written to it */
ZK_API int Save_Trajectory(ArmSocket socket, const char* path, int32_t* total);
ZK_API int Save_Drag_Teach_File_Block_NC_E(ArmSocket socket, const char* path, int32_t* total);
ZK_API int Save_Drag_Teach_File_NonBlock(ArmSocket socket, const char* path, int32_t* total);

/* -------------------------------------------------------------------------------------------- Popup and progress -- */

/* Numbers that the application keeps here. The library never raises the progress of an update or the flag of a save:
 * both read 0. Use the ..._With_Progress calls. The calls return 0, or 19 for a null pointer. Any thread. */
ZK_API int32_t m_update_scale;
ZK_API int32_t drag_teach_flag;
ZK_API int32_t m_is_popup;
ZK_API int32_t m_popup_pos;
ZK_API int Get_Update_Scale_E(int32_t* scale);
ZK_API int Get_Save_Trajectory_Flag_E(int32_t* flag);
ZK_API int Cancle_Save_Trajectory_E(void); /* writes 0 to drag_teach_flag */
ZK_API int Get_Popup_State_E(int32_t* is_popup, int32_t* popup_pos);
ZK_API int Set_Popup_State_E(int32_t is_popup, int32_t popup_pos);

/* Reports to the controller that its popup was answered. Queues the request and returns 0; the reply stays in its
 * mailbox. */
ZK_API int Set_Popup_NonBlock_E(ArmSocket socket);

/* ------------------------------------------------------------------------------------------------ Small commands -- */

/*
 * The next line of a program that runs step by step; versions of the lift and the sale; the version of the tool's
 * hardware; the controller's address. The plain names wait 2 ms first and raise SuspendQueue.
 *
 * Set_Lift_Version_E and Set_Controller_IP_NC_E always end in 7: the controller executes them, but the reply of the
 * first is dropped and that of the second goes to the mailbox of Set_NetIP. Use Set_NetIP for the address.
 */
ZK_API int Set_Online_Next_E(ArmSocket socket);
ZK_API int Set_Online_Next_Block_E(ArmSocket socket);

ZK_API int Set_Lift_Version_E(ArmSocket socket, int32_t lift_version);
ZK_API int Set_Lift_Version_Block_E(ArmSocket socket, int32_t lift_version);

ZK_API int Set_Sale_Version_E(ArmSocket socket, int32_t sale_version);
ZK_API int Set_Sale_Version_Block_E(ArmSocket socket, int32_t sale_version);

ZK_API int Get_Tool_Hardware_Version_E(ArmSocket socket, int32_t* version);
ZK_API int Get_Tool_Hardware_Version_Block_E(ArmSocket socket, int32_t* version);

ZK_API int Set_Controller_IP_NC_E(ArmSocket socket, const char* ip);
ZK_API int Set_Controller_IP_Block_NC_E(ArmSocket socket, const char* ip);

#endif
