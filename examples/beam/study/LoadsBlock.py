#This is Brindle SDK 4.0 Generated Code.
# Do not make changes to this file .All your modifications will be lost in the next save.
import win32com.client 
import win32api 
import CustomGui 
import sys 
import THostManager 
 
 
class LoadsBlock(object): 
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
        self.Cases =  ['dwelling', 'storage', 'snow drift']  
        self.Dead =  [2.5, 2.5, 3.1]  
        self.Live =  [4.0, 6.0, 4.8]  
        self.Design =  []  
        self.Service =  []  
        return
    def getCases(self):         
        returnValue = []
        if(self.exvardb.checkProcessVariable(r'Cases') == 0):
            returnValue = list(self.exvardb.getStringArrayVarValues(r'Cases'))
        else:
            returnValue=self.Cases  
        return returnValue    
     

    def setCases(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Cases') == 0):
            self.exvardb.setStringArrayVarValues(r'Cases', newVal )
            self.Cases=newVal 
        else: 
            self.Cases=newVal 
     

    def getDead(self):         
        returnValue = []
        if(self.exvardb.checkProcessVariable(r'Dead') == 0):
            returnValue = list(self.exvardb.getDoubleArrayVarValues(r'Dead'))
        else:
            returnValue=self.Dead  
        return returnValue    
     

    def setDead(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Dead') == 0):
            self.exvardb.setDoubleArrayVarValues(r'Dead', newVal )
            self.Dead=newVal 
        else: 
            self.Dead=newVal 
     

    def getLive(self):         
        returnValue = []
        if(self.exvardb.checkProcessVariable(r'Live') == 0):
            returnValue = list(self.exvardb.getDoubleArrayVarValues(r'Live'))
        else:
            returnValue=self.Live  
        return returnValue    
     

    def setLive(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Live') == 0):
            self.exvardb.setDoubleArrayVarValues(r'Live', newVal )
            self.Live=newVal 
        else: 
            self.Live=newVal 
     

    def getDesign(self):         
        returnValue = []
        if(self.exvardb.checkProcessVariable(r'Design') == 0):
            returnValue = list(self.exvardb.getDoubleArrayVarValues(r'Design'))
        else:
            returnValue=self.Design  
        return returnValue    
     

    def setDesign(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Design') == 0):
            self.exvardb.setDoubleArrayVarValues(r'Design', newVal )
            self.Design=newVal 
        else: 
            self.Design=newVal 
     

    def getService(self):         
        returnValue = []
        if(self.exvardb.checkProcessVariable(r'Service') == 0):
            returnValue = list(self.exvardb.getDoubleArrayVarValues(r'Service'))
        else:
            returnValue=self.Service  
        return returnValue    
     

    def setService(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Service') == 0):
            self.exvardb.setDoubleArrayVarValues(r'Service', newVal )
            self.Service=newVal 
        else: 
            self.Service=newVal 
     

    def GetVariables(self):
        self.Cases = self.getCases()
        self.Dead = self.getDead()
        self.Live = self.getLive()
        self.Design = self.getDesign()
        self.Service = self.getService()
        return
    def UpdateVariables(self):
        self.setCases(self.Cases)
        self.setDead(self.Dead)
        self.setLive(self.Live)
        self.setDesign(self.Design)
        self.setService(self.Service)
        return
