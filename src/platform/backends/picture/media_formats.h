#pragma once

namespace velmora::platform::picture {

// The containers and raw streams that count as media, by the names of their demuxers. Not among
// them, on purpose: whatever names other files or addresses (play lists, streaming manifests,
// concatenations, session descriptions), still pictures, subtitles, texts, and raw data that every
// file could be.
inline constexpr char mediaFormats[] =
    "aa,aac,ac3,acm,adx,aiff,amr,amrnb,amrwb,ape,asf,asf_o,au,av1,avi,bink,caf,dirac,dsf,dts,"
    "dtshd,dv,eac3,flac,flic,flv,gsm,gxf,h261,h263,h264,hevc,iff,ilbc,ircam,ivf,kux,live_flv,loas,"
    "m4v,matroska,mlp,mov,mp3,mpc,mpc8,mpeg,mpegts,mpegvideo,mxf,nistsphere,nsv,nut,nuv,obu,ogg,"
    "oma,pva,qcp,rm,roq,shn,smk,sox,swf,tak,truehd,tta,vc1,vivo,voc,vqf,w64,wav,wsaud,wsvqa,wtv,"
    "wv,xa,xmv,xwma,yuv4mpegpipe";

} // namespace velmora::platform::picture
