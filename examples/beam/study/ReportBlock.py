#This is Brindle SDK 4.0 Generated Code.
# Do not make changes to this file .All your modifications will be lost in the next save.
import win32com.client 
import win32api 
import CustomGui 
import sys 
import THostManager 
 
 
class ReportBlock(object): 
    def __init__(self,block=None): 
## GUI initialization 
        
        self.VariableComClass=r'ProcessExecutive.Variables'
        self.exvardb = win32com.client.Dispatch(self.VariableComClass)
## Process Block Initialization 
        self.EXEC_MODE_NORMAL = 0
        self.EXEC_MODE_UNDO = 1
        self.EXEC_MODE_AUTO = 2
        self.InitVariables()
        self.api = win32com.client.Dispatch('ProcessExecutive.ProcessExecutiveApi')
        if(self.api != None):
            self.ExecutionMode = self.api.getExecutionType()
        else:
             self.ExecutionMode = self.EXEC_MODE_NORMAL
## End of Initialization
    def ShowDialog(self):
        pass
        return
        
    def HideDialog(self):
        pass
        return
        
    def CreateGui(self):
        pass
        
    def CreateModalGui(self):
        pass
        
    def CloseDialog(self):
        pass
        
## Default Process Block methods 
    def Execute(self):
        self.ExecuteBlock()
        return
        
    def Undo(self):
        self.UndoBlock()
        return
        
    def CanUndo(self):
        return 1
        
    def CanSkip(self):
        return 1
        
    def ExecuteBlock(self):
        return
       
    def UndoBlock(self):
        return
        
    def DrawWindow(self, window, model):
        return
        
    def PlayMacro(self):
        return
        
    def IsValidState(self):
        return 1 
        
    def InitVariables(self):
        import Kelso         
        self.Profile =  r""  
        self.Trial =  0  
        self.Governing =  r""  
        self.StressUse =  0.00  
        self.DeflectionUse =  0.00  
        self.Result =  r""  
        return
    def getProfile(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Profile') == 0):
            returnValue = self.exvardb.getStringVarValue(r'Profile')
        else:
            returnValue= self.Profile 
        return str (returnValue)    
     

    def setProfile(self, newVal ):        
        if(self.exvardb.checkProcessVariable(r'Profile') == 0):
            self.exvardb.setStringVarValue(r'Profile', str (newVal) )
            self.Profile= str (newVal) 
        else:
            self.Profile= str (newVal) 
     

    def getTrial(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Trial') == 0):
            returnValue = self.exvardb.getIntVarValue(r'Trial')
        else:
            returnValue=self.Trial 
        return returnValue    
     

    def setTrial(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Trial') == 0):
            self.exvardb.setIntVarValue(r'Trial', newVal )
            self.Trial=newVal 
        else:
            self.Trial=newVal 
     

    def getGoverning(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Governing') == 0):
            returnValue = self.exvardb.getStringVarValue(r'Governing')
        else:
            returnValue= self.Governing 
        return str (returnValue)    
     

    def setGoverning(self, newVal ):        
        if(self.exvardb.checkProcessVariable(r'Governing') == 0):
            self.exvardb.setStringVarValue(r'Governing', str (newVal) )
            self.Governing= str (newVal) 
        else:
            self.Governing= str (newVal) 
     

    def getStressUse(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'StressUse') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'StressUse')
        else:
            returnValue=self.StressUse 
        return returnValue    
     

    def setStressUse(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'StressUse') == 0):
            self.exvardb.setDoubleVarValue(r'StressUse', newVal )
            self.StressUse=newVal 
        else:
            self.StressUse=newVal 
     

    def getDeflectionUse(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'DeflectionUse') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'DeflectionUse')
        else:
            returnValue=self.DeflectionUse 
        return returnValue    
     

    def setDeflectionUse(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'DeflectionUse') == 0):
            self.exvardb.setDoubleVarValue(r'DeflectionUse', newVal )
            self.DeflectionUse=newVal 
        else:
            self.DeflectionUse=newVal 
     

    def getResult(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Result') == 0):
            returnValue = self.exvardb.getStringVarValue(r'Result')
        else:
            returnValue= self.Result 
        return str (returnValue)    
     

    def setResult(self, newVal ):        
        if(self.exvardb.checkProcessVariable(r'Result') == 0):
            self.exvardb.setStringVarValue(r'Result', str (newVal) )
            self.Result= str (newVal) 
        else:
            self.Result= str (newVal) 
     

    def GetVariables(self):
        self.Profile = self.getProfile()
        self.Trial = self.getTrial()
        self.Governing = self.getGoverning()
        self.StressUse = self.getStressUse()
        self.DeflectionUse = self.getDeflectionUse()
        self.Result = self.getResult()
        return
    def UpdateVariables(self):
        self.setProfile(self.Profile)
        self.setTrial(self.Trial)
        self.setGoverning(self.Governing)
        self.setStressUse(self.StressUse)
        self.setDeflectionUse(self.DeflectionUse)
        self.setResult(self.Result)
        return
