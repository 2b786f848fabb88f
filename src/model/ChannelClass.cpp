#include "model/ChannelClass.h"

#include "model/SiteFile.h"

void ChannelClass::Copy(const ChannelClass& source) {
    setScreenText(source.ScreenText());
    setPrintText(source.PrintText());
    setHelpNum(source.HelpNum());
    setBibNum(source.BibNum());
    setScrAlm(source.ScrAlm());
    setPrtAlm(source.PrtAlm());
    setHisto(source.Histo());
    setKlaxon(source.Klaxon());
    setAlmPrio(source.AlmPrio());
    setReact(source.React());
    setReactTpo(source.ReactTpo());
    setTypeImp(source.TypeImp());
    setMirrorType(source.MirrorType());
    setState(source.State());
}

void ChannelClass::WriteTo(SiteFileWriter& file) const {
    file.PutFileString(screenText_);
    file.PutFileString(printText_);
    file.PutWord(helpNum_);
    file.PutWord(bibNum_);
    file.PutBoolean(scrAlm_);
    file.PutBoolean(prtAlm_);
    file.PutBoolean(histo_);
    file.PutBoolean(klaxon_);
    file.PutWord(almPrio_);
    file.PutBoolean(react_);
    file.PutLong(reactTpo_);
    file.PutWord(typeImp_);
}

bool ChannelClass::SaveTo(SiteFileWriter& file) {
    WriteTo(file);
    modified_ = false;
    return false;
}

bool ChannelClass::ReadFrom(SiteFileReader& file) {
    screenText_ = file.GetFileString();
    printText_ = file.GetFileString();
    helpNum_ = file.GetWord();
    bibNum_ = file.GetWord();
    scrAlm_ = file.GetBoolean();
    prtAlm_ = file.GetBoolean();
    histo_ = file.GetBoolean();
    klaxon_ = file.GetBoolean();
    almPrio_ = file.GetWord();
    react_ = file.GetBoolean();
    reactTpo_ = file.GetLong();
    typeImp_ = file.GetWord();
    modified_ = false;
    return false;
}
