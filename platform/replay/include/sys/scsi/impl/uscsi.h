#pragma once

#include <sys/types.h>

struct uscsi_cmd {
    int uscsi_flags;
    short uscsi_status;
    short uscsi_timeout; // seconds
    caddr_t uscsi_cdb;
    caddr_t uscsi_bufaddr;
    size_t uscsi_buflen;
    size_t uscsi_resid;
    uchar_t uscsi_cdblen;
    uchar_t uscsi_rqlen;
    uchar_t uscsi_rqstatus;
    uchar_t uscsi_rqresid;
    caddr_t uscsi_rqbuf;
    void *uscsi_reserved_5;
};

#define USCSI_WRITE 0x00000
#define USCSI_SILENT 0x00001
#define USCSI_DIAGNOSE 0x00002
#define USCSI_ISOLATE 0x00004
#define USCSI_READ 0x00008

#define USCSIIOC (0x04 << 8)
#define USCSICMD (USCSIIOC | 201)
