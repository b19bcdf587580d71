// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// rtspserver FILE udp|tcp: serves the picture of a Matroska file by RTSP on loopback, over UDP or TCP alone, until it
// is killed. Its first line of output is the address.

#include <gst/rtsp-server/rtsp-server.h>

#include <cstdio>
#include <string>

int main(int argc, char *argv[])
{
    const std::string transport = argc == 3 ? argv[2] : "";
    if (transport != "udp" && transport != "tcp") {
        std::fputs("usage: rtspserver FILE udp|tcp\n", stderr);
        return 2;
    }
    gst_init(nullptr, nullptr);
    GstRTSPServer *server = gst_rtsp_server_new();
    gst_rtsp_server_set_address(server, "127.0.0.1");
    gst_rtsp_server_set_service(server, "0"); // any free port
    GstRTSPMediaFactory *factory = gst_rtsp_media_factory_new();
    const std::string pipeline =
        std::string("( filesrc location=") + argv[1] + " ! matroskademux ! rtph264pay name=pay0 )";
    gst_rtsp_media_factory_set_launch(factory, pipeline.c_str());
    gst_rtsp_media_factory_set_protocols(factory,
                                         transport == "tcp" ? GST_RTSP_LOWER_TRANS_TCP : GST_RTSP_LOWER_TRANS_UDP);
    GstRTSPMountPoints *mounts = gst_rtsp_server_get_mount_points(server);
    gst_rtsp_mount_points_add_factory(mounts, "/film", factory);
    g_object_unref(mounts);

    GMainLoop *loop = g_main_loop_new(nullptr, FALSE);
    if (gst_rtsp_server_attach(server, nullptr) == 0) {
        std::fputs("rtspserver: cannot listen on 127.0.0.1\n", stderr);
        return 1;
    }
    std::printf("rtsp://127.0.0.1:%d/film\n", gst_rtsp_server_get_bound_port(server));
    std::fflush(stdout);
    g_main_loop_run(loop);
    return 0;
}
